#include "model/AppViewModel.h"

#include "model/ScheduleEntry.h"
#include "protocol/DefaultsKeys.h"
#include "protocol/Notifications.h"
#include "support/FakeCalendar.h"
#include "support/FakeDisplayServices.h"
#include "support/FakeDistributedNotificationCenter.h"
#include "support/FakeSystemWake.h"
#include "support/FakeTaskExecutor.h"
#include "support/FakeUserDefaults.h"

#include <QTest>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

using namespace ambertide;
using namespace std::chrono_literals;

struct Payload
{
    std::optional<UserInfo> userInfo;
};
Q_DECLARE_METATYPE(Payload)

class AppViewModelTest : public QObject
{
    Q_OBJECT

    /// A model with everything that it works on.
    struct Bench
    {
        FakeDisplayServices displays;
        FakeSystemWake wake;
        FakeUserDefaults userDefaults;
        NotificationCenter notifications;
        FakeDistributedNotificationCenter distributed;
        FakeCalendar calendar;
        std::optional<FakeTaskExecutor> executor = std::optional<FakeTaskExecutor>(std::in_place);
        std::optional<AppViewModel> model;

        ~Bench() { model.reset(); }

        void start()
        {
            model.emplace(
                AppViewModel::Ports{displays, *executor, wake, userDefaults, notifications, distributed, calendar});
        }
        void startAt(double temperature)
        {
            userDefaults.setDouble(defaults::temperature, temperature);
            start();
            executor->advance(5s);
            displays.takeWrites();
        }
        void storeSchedule(std::vector<ScheduleEntry> entries)
        {
            userDefaults.setData(defaults::scheduleEntries, encodeSchedule(entries));
        }
        void requestUpdate(std::optional<UserInfo> userInfo)
        {
            distributed.post({.name = notifications::updateTemperature, .userInfo = std::move(userInfo)},
                             Delivery::standard);
        }
        void nudge() { notifications.post({.name = notifications::checkScheduleNow, .userInfo = {}}); }
        int restores()
        {
            int count = 0;
            for (const auto &write : displays.takeWrites())
                count += write.isRestore ? 1 : 0;
            return count;
        }
        double stored() { return userDefaults.doubleValue(defaults::temperature); }
        bool isShown(double temperature)
        {
            const auto writes = displays.takeWrites();
            return !writes.empty() && !writes.back().isRestore &&
                   writes.back().tables.blue == DisplayManager::createGammaTables(std::max(temperature, 2000.0)).blue;
        }
    };

    static ScheduleEntry entry(int hour, double temperature)
    {
        return {.time = FakeCalendar::at(hour, 0), .temperature = temperature};
    }

private Q_SLOTS:
    void theStoredTemperatureIsTakenUpOrReplacedByNeutral_data()
    {
        QTest::addColumn<double>("stored");
        QTest::addColumn<double>("taken");
        QTest::newRow("in range") << 3400.0 << 3400.0;
        QTest::newRow("rounded into the range") << 950.0 << 1000.0;
        QTest::newRow("too low") << 949.0 << 6500.0;
        QTest::newRow("too high") << 7000.0 << 6500.0;
        QTest::newRow("no number") << std::nan("") << 6500.0;
    }
    void theStoredTemperatureIsTakenUpOrReplacedByNeutral()
    {
        QFETCH(double, stored);
        Bench bench;
        bench.userDefaults.setDouble(defaults::temperature, stored);
        bench.start();
        bench.executor->advance(5s);
        QTEST(bench.model->temperature(), "taken");
        QVERIFY(bench.stored() == stored || std::isnan(stored)); // only a change writes
        QCOMPARE(bench.isShown(bench.model->temperature()), bench.model->temperature() < 6500);
    }

    void assignmentsAreRoundedAndStored_data()
    {
        QTest::addColumn<double>("assigned");
        QTest::addColumn<double>("kept");
        QTest::newRow("half away from zero") << 4250.0 << 4300.0;
        QTest::newRow("out of range is kept") << 9000.0 << 9000.0;
        QTest::newRow("no number is ignored") << std::nan("") << 5000.0;
        QTest::newRow("infinity is ignored") << -std::numeric_limits<double>::infinity() << 5000.0;
    }
    void assignmentsAreRoundedAndStored()
    {
        QFETCH(double, assigned);
        Bench bench;
        bench.startAt(5000);
        bench.model->setTemperature(assigned);
        QTEST(bench.model->temperature(), "kept");
        QTEST(bench.stored(), "kept");
    }

    void aBurstOfAssignmentsReachesTheDisplaysOnceWithItsLastValue()
    {
        Bench bench;
        bench.startAt(5000);
        for (int i = 1; i <= 10; ++i) {
            bench.model->setTemperature(5000 - 100 * i);
            bench.executor->advance(10ms);
        }
        bench.executor->advance(139ms);
        QVERIFY(bench.displays.takeWrites().empty());
        bench.executor->advance(1ms + 60 * 34ms);
        const auto writes = bench.displays.takeWrites();
        QVERIFY(writes.size() >= 60 && writes.size() <= 64); // one ramp, its end, and a periodic pass or two
        bench.executor->advance(2s);
        QVERIFY(bench.isShown(4000));
    }

    void aRequestFromOutsideSwitchesTheScheduleOffAndIsApplied_data()
    {
        QTest::addColumn<Payload>("payload");
        QTest::addColumn<double>("temperature");
        QTest::addColumn<bool>("isAccepted");
        const auto row = [](const char *name, std::optional<UserInfo> userInfo, double temperature, bool isAccepted) {
            QTest::newRow(name) << Payload{std::move(userInfo)} << temperature << isAccepted;
        };
        const auto with = [](UserInfoValue value) { return UserInfo{{"temperature", std::move(value)}}; };
        row("integer", with(std::int64_t{3400}), 3400, true);
        row("fraction", with(3450.5), 3500, true);
        row("rounded into the range", with(950.0), 1000, true);
        row("too low", with(std::int64_t{500}), 5000, false);
        row("too high", with(std::int64_t{9000}), 5000, false);
        row("not a number", with(std::nan("")), 5000, false);
        row("text: the stored one once more", with(std::string("3400")), 5000, true);
        row("no user info", std::nullopt, 5000, true);
    }
    void aRequestFromOutsideSwitchesTheScheduleOffAndIsApplied()
    {
        QFETCH(Payload, payload);
        QFETCH(bool, isAccepted);
        Bench bench;
        bench.startAt(5000);
        bench.model->setScheduleEnabled(true);
        bench.requestUpdate(payload.userInfo);
        QCOMPARE(bench.model->temperature(), 5000.0); // not before the handler has returned
        bench.executor->advance(5s);
        QTEST(bench.model->temperature(), "temperature");
        QCOMPARE(bench.model->scheduleEnabled(), !isAccepted);
        QVERIFY(bench.isShown(bench.model->temperature()));
    }

    void oneRequestIsAppliedAtOnceAndAgainAfterTheDebounce()
    {
        Bench bench;
        bench.startAt(5000);
        bench.requestUpdate(UserInfo{{"temperature", std::int64_t{3000}}});
        bench.executor->runReady();
        QCOMPARE(bench.displays.takeWrites().size(), std::size_t(1)); // the first ramp's first step
        bench.executor->advance(90ms);
        QVERIFY(bench.displays.takeWrites().size() <= 3);
        bench.executor->advance(2200ms); // one whole ramp from the debounced apply on
        QVERIFY(bench.isShown(3000));
    }

    void aFloodOfRequestsDoesNotBlockTheMainThreadForEachOfThem()
    {
        Bench bench;
        bench.startAt(5000);
        const auto before = bench.executor->now();
        for (int i = 0; i < 10'000; ++i)
            bench.requestUpdate(UserInfo{{"temperature", std::int64_t{2000 + 100 * (i % 40)}}});
        bench.executor->runReady();
        QVERIFY(bench.executor->now() - before < 1s);
        bench.executor->advance(5s);
        QVERIFY(bench.isShown(2000 + 100 * (9'999 % 40)));
        QVERIFY(bench.executor->sleeperCount() <= 2);
    }

    void theScheduleIsFollowedByBothTriggers_data()
    {
        QTest::addColumn<bool>("isNudged");
        QTest::newRow("nudged") << true;
        QTest::newRow("by the timer alone") << false;
    }
    void theScheduleIsFollowedByBothTriggers()
    {
        QFETCH(bool, isNudged);
        Bench bench;
        bench.storeSchedule({entry(21, 3450), entry(7, 6500)});
        bench.userDefaults.setBool(defaults::scheduleEnabled, true);
        bench.calendar.current = FakeCalendar::at(20, 59);
        bench.startAt(5000);
        QCOMPARE(bench.model->temperature(), 6500.0); // at start
        bench.calendar.current = FakeCalendar::at(21, 0);
        if (isNudged)
            bench.nudge();
        bench.executor->advance(isNudged ? 1s : 60s);
        QCOMPARE(bench.model->temperature(), 3500.0);
        bench.executor->advance(5s);
        QVERIFY(bench.isShown(3500));
    }

    void aManualChangeStandsAgainstACheckThatIsUnderWay()
    {
        Bench bench;
        bench.storeSchedule({entry(0, 2700)});
        bench.startAt(5000);
        bench.model->setScheduleEnabled(true); // its checks have not run yet
        bench.model->handleManualChange();
        bench.model->setTemperature(4000);
        bench.executor->advance(120s);
        QCOMPARE(bench.model->temperature(), 4000.0);
        QCOMPARE(bench.executor->sleeperCount(), std::size_t(1)); // no schedule timer beside the periodic pass
    }

    void aFlagChangedByAnotherProgramStartsAndStopsTheTimer()
    {
        Bench bench;
        bench.startAt(5000);
        bench.userDefaults.setBool(defaults::scheduleEnabled, true);
        bench.nudge();
        bench.executor->advance(1s);
        QCOMPARE(bench.executor->sleeperCount(), std::size_t(2));
        bench.userDefaults.setBool(defaults::scheduleEnabled, false);
        bench.nudge();
        bench.executor->advance(1s);
        QCOMPARE(bench.executor->sleeperCount(), std::size_t(1));
    }

    void theEndGivesTheDisplaysBackAndSilencesEverything()
    {
        Bench bench;
        bench.storeSchedule({entry(0, 2700)});
        bench.startAt(3400);
        bench.model->setScheduleEnabled(true);
        bench.model->setTemperature(4000);
        bench.model.reset();
        bench.nudge();
        bench.requestUpdate(UserInfo{{"temperature", std::int64_t{3000}}});
        bench.executor->advance(120s);
        QCOMPARE(bench.restores(), 1);
        QCOMPARE(bench.executor->sleeperCount(), std::size_t(1)); // the periodic pass
    }
};

QTEST_GUILESS_MAIN(AppViewModelTest)
#include "AppViewModel.moc"
