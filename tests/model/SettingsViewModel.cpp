#include "model/SettingsViewModel.h"

#include "model/DefaultsKeys.h"
#include "model/Notifications.h"
#include "support/CapturedConsole.h"
#include "support/FakeCalendar.h"
#include "support/FakeDisplayServices.h"
#include "support/FakeDistributedNotificationCenter.h"
#include "support/FakeSystemWake.h"
#include "support/FakeTaskExecutor.h"
#include "support/FakeUserDefaults.h"

#include <QSignalSpy>
#include <QTest>

#include <cmath>

using namespace ambertide;

namespace {

struct FixedLoginItem final : LoginItem
{
    LoginItemStatus current = LoginItemStatus::NotRegistered;

    LoginItemStatus status() const override { return current; }
    std::optional<std::string> registerItem() override { return "is never asked"; }
    std::optional<std::string> unregisterItem() override { return "is never asked"; }
};

/// Both models with everything that they work on.
struct Bench
{
    FakeDisplayServices displays;
    FakeSystemWake wake;
    FakeUserDefaults userDefaults;
    NotificationCenter notifications;
    FakeDistributedNotificationCenter distributed;
    FakeCalendar calendar;
    FixedLoginItem loginItem;
    FakeTaskExecutor executor;
    AppViewModel application{{displays, executor, wake, userDefaults, notifications, distributed, calendar}};
    CapturedConsole console;
    int checks = 0;
    Observation observation =
        notifications.observe(notifications::checkScheduleNow, [this](const Notification &) { ++checks; });
    std::optional<SettingsViewModel> model;

    void start()
    {
        model.emplace(application, SettingsViewModel::Ports{userDefaults, notifications, calendar, loginItem});
    }
    static QList<int> hoursOf(const std::vector<ScheduleEntry> &entries)
    {
        QList<int> hours;
        for (const auto &entry : entries)
            hours += FakeCalendar().timeOfDay(entry.time).hour.value_or(-1);
        return hours;
    }
    QList<int> hours() const { return hoursOf(model->scheduleEntries()); }
    QList<int> storedHours()
    {
        const auto stored = userDefaults.data(defaults::scheduleEntries);
        const auto decoded = decodeSchedule(stored.value_or("nothing"));
        return decoded.entries ? hoursOf(*decoded.entries) : QList{-1};
    }
};

} // namespace

class SettingsViewModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyChangeKeepsTheOrderIsStoredAndCheckedWhileTheScheduleIsOn()
    {
        Bench bench;
        bench.start();
        QSignalSpy changes(&*bench.model, &SettingsViewModel::changed);
        int checks = 0;
        const auto expect = [&](QList<int> hours) {
            QCOMPARE(bench.hours(), hours);
            QCOMPARE(bench.storedHours(), hours);
            QCOMPARE(bench.checks, checks += bench.model->scheduleEnabled() ? 1 : 0);
            QVERIFY(changes.size() >= 1);
            changes.clear();
        };
        bench.model->addScheduleEntry(3000, FakeCalendar::at(22, 0));
        expect({22});
        bench.model->addScheduleEntry(3000, FakeCalendar::at(6, 0));
        expect({6, 22});
        bench.userDefaults.setBool(defaults::scheduleEnabled, true);
        bench.model->addScheduleEntry(3800);
        expect({6, 12, 22});
        bench.model->addScheduleEntry(5000);
        expect({6, 12, 12, 22});
        QCOMPARE(bench.model->scheduleEntries().at(2).temperature, 5000.0); // after the other of that time
        auto moved = bench.model->scheduleEntries().front();
        moved.time = FakeCalendar::at(23, 0);
        moved.isEnabled = false;
        bench.model->updateScheduleEntry(moved);
        expect({12, 12, 22, 23});
        QVERIFY(bench.model->scheduleEntries().back() == moved);
        QCOMPARE(bench.model->activeEntry(FakeCalendar::at(23, 30)), bench.model->scheduleEntries().at(2).id);
        bench.model->deleteScheduleEntry({0, 2, 3, 4, std::size_t(-1)});
        expect({12});
        QCOMPARE(bench.model->scheduleEntries().front().temperature, 5000.0);

        bench.model->updateScheduleEntry(moved); // deleted meanwhile
        QCOMPARE(bench.hours(), QList{12});
        QCOMPARE(bench.checks, checks);
        QVERIFY(changes.empty() && bench.console.lines.empty());
    }

    void theSwitchIsFollowedAndSaysSo()
    {
        Bench bench;
        bench.start();
        bench.model->updateScheduleEnabled(true);
        QVERIFY(bench.application.scheduleEnabled());
        QCOMPARE(bench.checks, 0);
        bench.model->addScheduleEntry(3000);
        bench.executor.advance(std::chrono::seconds(1));
        QCOMPARE(bench.application.temperature(), 3000.0);
        bench.model->updateScheduleEnabled(false);
        QVERIFY(!bench.application.scheduleEnabled());
        QCOMPARE(bench.checks, 2);
        const std::vector<std::string> lines = {"SettingsViewModel: Updating schedule enabled state to: true",
                                                "No schedule entries found when enabling schedule",
                                                "SettingsViewModel: Updating schedule enabled state to: false",
                                                "Notifying app to check schedule with 1 entries"};
        QCOMPARE(bench.console.lines, lines);
    }

    void whatCannotBeReadShowsAsEmptyUntilItIsOverwritten()
    {
        Bench bench;
        bench.userDefaults.setData(defaults::scheduleEntries, R"([{"id": 1}])");
        bench.start();
        QVERIFY(bench.model->scheduleEntries().empty());
        QCOMPARE(bench.console.lines.size(), 1U);
        QVERIFY(bench.console.lines.front().starts_with("Error decoding schedule entries: entry 1"));
        QCOMPARE(bench.storedHours(), QList{-1});
        bench.calendar.knowsDates = false; // the time is then that of now
        bench.calendar.current = FakeCalendar::at(17, 5);
        bench.model->addScheduleEntry(3000);
        QCOMPARE(bench.storedHours(), QList{17});

        bench.model->addScheduleEntry(std::nan(""), FakeCalendar::at(18, 0));
        QCOMPARE(bench.storedHours(), QList{17}); // stays readable
        QVERIFY(bench.console.lines.back().starts_with("Error encoding schedule entries: "));
    }

    void aHugeScheduleOfOneIdentifierIsShownAsStoredAndEditedByItsFirst()
    {
        Bench bench;
        std::vector<ScheduleEntry> stored(10'000, ScheduleEntry{.time = FakeCalendar::at(8, 0), .temperature = 3000});
        stored.front().time = {1e300};
        bench.userDefaults.setData(defaults::scheduleEntries, encodeSchedule(stored));
        bench.start();
        QVERIFY(bench.model->scheduleEntries() == stored);
        auto edited = stored.front();
        edited.time = FakeCalendar::at(9, 0);
        bench.model->updateScheduleEntry(edited);
        QVERIFY(bench.model->scheduleEntries().back() == edited);
        QCOMPARE(bench.storedHours().count(8), 9'999);
    }

    void changesFromElsewhereAreTold()
    {
        Bench bench;
        bench.loginItem.current = LoginItemStatus::Enabled;
        bench.start();
        QVERIFY(bench.model->launchAtLogin());
        QSignalSpy changes(&*bench.model, &SettingsViewModel::changed);
        bench.model->setLaunchAtLogin(false);
        bench.model->setLaunchAtLogin(false);
        bench.model->setSelectedTab(1);
        QCOMPARE(changes.size(), 2);
        bench.application.handleManualChange();
        QCOMPARE(changes.size(), 3);
    }
};

QTEST_GUILESS_MAIN(SettingsViewModelTest)
#include "SettingsViewModel.moc"
