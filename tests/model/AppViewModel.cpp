#include "protocol/Notifications.h"
#include "support/ModelBench.h"

#include <QSignalSpy>
#include <QTest>

#include <cmath>

using namespace ambertide;
using namespace std::chrono_literals;

class AppViewModelTest : public QObject
{
    Q_OBJECT

    struct Bench : ModelBench
    {
        using ModelBench::ModelBench;

        void request(std::optional<UserInfo> userInfo)
        {
            distributed.post({notifications::updateTemperature, std::move(userInfo)}, Delivery::standard);
        }
        void nudge() { notifications.post(notifications::withoutUserInfo(notifications::checkScheduleNow)); }
        double stored() { return userDefaults.doubleValue(defaults::temperature); }
    };

    static UserInfo kelvin(UserInfoValue value) { return {{"temperature", std::move(value)}}; }
    static ScheduleEntry entry(int hour, double temperature)
    {
        return {.time = FakeCalendar::at(hour, 0), .temperature = temperature};
    }

private Q_SLOTS:
    void theStoredTemperatureIsTakenUpOrReplacedByNeutral()
    {
        for (const auto &[stored, taken] : {std::pair(3400.0, 3400.0),
                                            {950.0, 1000.0}, // rounded into the range
                                            {949.0, 6500.0},
                                            {7000.0, 6500.0},
                                            {std::nan(""), 6500.0}}) {
            Bench bench(stored);
            QCOMPARE(bench.model->temperature(), taken);
            QVERIFY(bench.stored() == stored || std::isnan(stored)); // only a change writes
            QVERIFY(bench.isShown(taken));
        }
        Bench first;
        first.start();
        QCOMPARE(first.stored(), 6500.0);
    }

    void aDragReachesTheDisplaysOnceWithItsLastValue()
    {
        Bench bench(5000);
        QSignalSpy changes(&*bench.model, &AppViewModel::changed);
        for (int i = 1; i <= 10; ++i) {
            bench.model->handleManualChange();
            bench.model->setTemperature(5000 - 100 * i);
            bench.executor.advance(10ms);
            bench.nudge(); // which comes every 5 s, also during a drag
        }
        QCOMPARE(changes.count(), 10); // the schedule was off all along
        bench.executor.advance(139ms);
        QVERIFY(bench.displays.takeWrites().empty());
        bench.executor.advance(1ms);
        QCOMPARE(bench.displays.takeWrites().size(), std::size_t(1));
        bench.executor.advance(5s);
        QVERIFY(bench.isShown(4000));
    }

    void aRequestFromOutsideSwitchesTheScheduleOffAndIsApplied()
    {
        using Row = std::tuple<const char *, std::optional<UserInfo>, double, bool>;
        for (const auto &[name, userInfo, temperature, isAccepted] :
             std::vector<Row>{{"integer", kelvin(std::int64_t{3400}), 3400, true},
                              {"fraction", kelvin(3450.5), 3500, true},
                              {"rounded into the range", kelvin(950.0), 1000, true},
                              {"too low", kelvin(std::int64_t{500}), 5000, false},
                              {"too high", kelvin(std::int64_t{9000}), 5000, false},
                              {"not a number", kelvin(std::nan("")), 5000, false},
                              {"just beyond an integer", kelvin(9223372036854775808.0), 5000, false},
                              {"text: the stored one once more", kelvin(std::string("3400")), 4200, true},
                              {"no user info", std::nullopt, 4200, true}}) {
            Bench bench(5000);
            bench.model->setScheduleEnabled(true);
            bench.userDefaults.setDouble(defaults::temperature, 4200); // by another program
            bench.request(userInfo);
            QCOMPARE(bench.model->temperature(), 5000.0); // not before the handler has returned
            bench.executor.advance(5s);
            QVERIFY2(bench.model->temperature() == temperature, name);
            QVERIFY2(bench.model->scheduleEnabled() != isAccepted, name);
            QVERIFY2(bench.isShown(temperature), name);
        }
    }

    void aRequestThatWasDroppedDuringARampIsMadeAgain()
    {
        Bench bench(3400);
        for (const double temperature : {2500.0, 3400.0}) {
            bench.model->requestTemperature(temperature);
            bench.executor.advance(30ms);
        }
        bench.nudge(); // while the ramp runs: not yet
        bench.executor.advance(5s);
        QVERIFY(bench.isShown(2500));
        bench.nudge();
        bench.executor.advance(5s);
        QVERIFY(bench.isShown(3400));
    }

    void theScheduleIsFollowedByBothTriggers()
    {
        for (const bool isNudged : {true, false}) {
            Bench bench;
            bench.storeSchedule({entry(21, 3450), entry(7, 6500)});
            bench.userDefaults.setBool(defaults::scheduleEnabled, true);
            bench.userDefaults.setDouble(defaults::temperature, 5000);
            bench.calendar.current = FakeCalendar::at(20, 59);
            bench.start();
            QCOMPARE(bench.model->temperature(), 6500.0); // at start, during the ramp to what was stored
            bench.nudge();
            bench.executor.advance(5s);
            QVERIFY(bench.isShown(6500));
            bench.calendar.current = FakeCalendar::at(21, 0);
            if (isNudged) {
                bench.nudge();
                bench.executor.runReady();
                QCOMPARE(bench.displays.takeWrites().size(), std::size_t(1)); // at once
            }
            bench.executor.advance(60s);
            QCOMPARE(bench.model->temperature(), 3500.0);
            bench.executor.advance(5s);
            QVERIFY(bench.isShown(3500));
            bench.nudge();
            bench.executor.runReady();
            QVERIFY(bench.displays.takeWrites().empty()); // it is so already
        }
    }

    void aManualChangeStandsAgainstACheckThatIsUnderWay()
    {
        Bench bench(5000);
        bench.storeSchedule({entry(0, 2700)});
        bench.model->setScheduleEnabled(true); // its checks have not run yet
        bench.model->handleManualChange();
        bench.model->setTemperature(4000);
        bench.executor.advance(120s);
        QCOMPARE(bench.model->temperature(), 4000.0);
        QVERIFY(bench.executor.sleeperCount() == 1); // no schedule timer beside the periodic pass
    }

    void theEndGivesTheDisplaysBackAndSilencesEverything()
    {
        Bench bench(3400);
        bench.storeSchedule({entry(0, 2700)});
        bench.model->setScheduleEnabled(true);
        bench.model->setTemperature(4000);
        bench.model.reset();
        bench.nudge();
        bench.request(kelvin(std::int64_t{3000}));
        bench.executor.advance(120s);
        const auto writes = bench.displays.takeWrites();
        QVERIFY(writes.size() == 1 && writes[0].isRestore);
        QVERIFY(bench.executor.sleeperCount() == 1); // the periodic pass
    }
};

QTEST_GUILESS_MAIN(AppViewModelTest)
#include "AppViewModel.moc"
