#include "model/SettingsViewModel.h"

#include "protocol/Notifications.h"
#include "support/CapturedConsole.h"
#include "support/ModelBench.h"

#include <QSignalSpy>
#include <QTest>

#include <cmath>

using namespace ambertide;

namespace {

struct EnabledLoginItem final : LoginItem
{
    LoginItemStatus status() const override { return LoginItemStatus::Enabled; }
    std::optional<std::string> registerItem() override { return "is never asked"; }
    std::optional<std::string> unregisterItem() override { return "is never asked"; }
};

QString hoursOf(const std::vector<ScheduleEntry> &entries)
{
    QStringList hours;
    for (const auto &entry : entries)
        hours += QString::number(*FakeCalendar().timeOfDay(entry.time).hour);
    return hours.join(u' ');
}

} // namespace

class SettingsViewModelTest : public QObject
{
    Q_OBJECT

    /// Both models with everything that they work on.
    struct Bench : ModelBench
    {
        Bench() : ModelBench(AppViewModel::neutralTemperature) {}

        EnabledLoginItem loginItem;
        CapturedConsole console;
        AppViewModel &application = *ModelBench::model;
        SettingsViewModel model{application, {userDefaults, notifications, calendar, loginItem}};
        QSignalSpy changes{&model, &SettingsViewModel::changed};
        int checks = 0;
        Observation observation =
            notifications.observe(notifications::checkScheduleNow, [this](const Notification &) { ++checks; });

        QString storedHours()
        {
            const auto decoded = decodeSchedule(userDefaults.data(defaults::scheduleEntries).value_or("nothing"));
            return hoursOf(decoded.entries.value_or(std::vector<ScheduleEntry>()));
        }
    };

private Q_SLOTS:
    void everyChangeKeepsTheOrderIsStoredAndCheckedWhileTheScheduleIsOn()
    {
        Bench bench;
        auto &model = bench.model;
        const auto expect = [&bench](const char *hours, int checks) {
            QCOMPARE(hoursOf(bench.model.scheduleEntries()), QLatin1String(hours));
            QCOMPARE(bench.storedHours(), QLatin1String(hours));
            QCOMPARE(std::exchange(bench.checks, 0), checks);
            QVERIFY(!bench.changes.empty());
            bench.changes.clear();
        };
        model.addScheduleEntry(3000, FakeCalendar::at(22, 0));
        expect("22", 0);
        model.addScheduleEntry(3000, FakeCalendar::at(6, 0));
        expect("6 22", 0);
        bench.userDefaults.setBool(defaults::scheduleEnabled, true);
        model.addScheduleEntry(3800);
        expect("6 12 22", 1);
        model.addScheduleEntry(5000);
        expect("6 12 12 22", 1);
        QCOMPARE(model.scheduleEntries().at(2).temperature, 5000.0); // after the other of that time
        auto moved = model.scheduleEntries().front();
        moved.time = FakeCalendar::at(23, 0);
        moved.isEnabled = false;
        model.updateScheduleEntry(moved);
        expect("12 12 22 23", 1);
        QCOMPARE(model.activeEntry(FakeCalendar::at(23, 30)), model.scheduleEntries().at(2).id);
        model.deleteScheduleEntry({0, 2, 3, 4, std::size_t(-1)});
        expect("12", 1);
        QCOMPARE(model.scheduleEntries().front().temperature, 5000.0);
        model.updateScheduleEntry(moved); // deleted meanwhile
        QVERIFY(bench.checks == 0 && bench.changes.empty() && bench.console.lines.empty());
    }

    void whatCannotBeReadOrWrittenDoesNoHarm()
    {
        Bench bench;
        bench.userDefaults.setData(defaults::scheduleEntries, R"([{"id": 1}])");
        bench.model.updateScheduleEnabled(true);
        bench.model.addScheduleEntry(3000);
        bench.executor.advance(std::chrono::seconds(1));
        QCOMPARE(bench.application.temperature(), 3000.0);
        bench.model.addScheduleEntry(std::nan(""));
        QCOMPARE(bench.storedHours(), QStringLiteral("12")); // remains readable
        QVERIFY(bench.console.lines.back().starts_with("Error encoding schedule entries: "));
    }
};

QTEST_GUILESS_MAIN(SettingsViewModelTest)
#include "SettingsViewModel.moc"
