#include "model/ScheduleEntry.h"
#include "model/SettingsViewModel.h"
#include "protocol/Notifications.h"
#include "support/CapturedConsole.h"
#include "support/ModelBench.h"

#include <QSignalSpy>
#include <QTest>

#include <algorithm>
#include <cmath>
#include <map>

using namespace ambertide;

/// The schedule by itself, and as the Settings window changes it.
class Schedule : public QObject
{
    Q_OBJECT

    const FakeCalendar calendar;

    static ScheduleEntry entry(int hour, int minute, double temperature, bool isEnabled = true)
    {
        return {.time = FakeCalendar::at(hour, minute), .temperature = temperature, .isEnabled = isEnabled};
    }

    /// Both models with everything that they work on.
    struct Bench : ModelBench
    {
        Bench() : ModelBench(AppViewModel::neutralTemperature) {}

        CapturedConsole console;
        AppViewModel &application = *ModelBench::model;
        SettingsViewModel model{application, {userDefaults, notifications, calendar, system}};
        QSignalSpy changes{&model, &SettingsViewModel::changed};
        int checks = 0;
        Observation observation =
            notifications.observe(notifications::checkScheduleNow, [this](const Notification &) { ++checks; });

        auto stored()
        {
            return decodeSchedule(userDefaults.data(defaults::scheduleEntries).value_or("nothing")).entries;
        }
    };

private Q_SLOTS:
    void theStoredFormIsReadAndWrittenAlike()
    {
        const std::string stored = R"([{"id":"0B5E4AEE-9D54-4D1F-A9B9-8FD1A3A0D5C1","isEnabled":false,)"
                                   R"("temperature":3400.5,"time":-62135553600.25}])";
        const auto entries = decodeSchedule(stored).entries.value();
        QVERIFY(entries.size() == 1 && !entries[0].isEnabled && entries[0].temperature == 3400.5);
        QCOMPARE(entries[0].time, (Date{-62135553600.25}));
        QCOMPARE(encodeSchedule(entries), stored);
        QVERIFY(decodeSchedule(encodeSchedule({})).entries == std::vector<ScheduleEntry>());
    }

    void whatIsNoScheduleDoesNotDecodeAndSaysWhy()
    {
        const std::string good =
            R"({"id":"0B5E4AEE-9D54-4D1F-A9B9-8FD1A3A0D5C1","time":0,"temperature":1,"isEnabled":true})";
        const auto altered = [&good](std::string_view from, const char *to) {
            return '[' + good + ',' + std::string(good).replace(good.find(from), from.size(), to) + ']';
        };
        const std::map<std::string, std::string> reasons = {
            {altered("isEnabled", "enabled"), "entry 2 has no valid \"isEnabled\""},
            {altered("true", "1"), "\"isEnabled\""},
            {altered(":0", ":\"0\""), "\"time\""},
            {altered("0B5E4AEE", "0B5E4AE"), "\"id\""},
            {altered("0B5E", "{0B5E"), "\"id\""},
            {good, "not a list"},
            {"[1]", "\"id\""},
            {"", " "},
            {std::string(100'000, '['), " "}};
        for (const auto &[json, reason] : reasons) {
            const auto decoded = decodeSchedule(json);
            QVERIFY2(!decoded.entries && decoded.error.find(reason) != std::string::npos, decoded.error.c_str());
        }
    }

    void theEntryInForceIsTheLastOneReached()
    {
        const std::vector entries = {entry(23, 30, 2700), entry(7, 0, 6500), entry(8, 0, 1000, false),
                                     entry(21, 0, 3400)};
        const auto inForce = [&](int hour, int minute) {
            return entryInForce(entries, {hour, minute}, calendar).value().temperature;
        };
        QCOMPARE(inForce(20, 59), 6500.0);
        QCOMPARE(inForce(21, 0), 3400.0);
        QCOMPARE(inForce(2, 0), 2700.0); // past midnight
        QCOMPARE(inForce(6, 59), 2700.0);
        QCOMPARE(inForce(7, 0), 6500.0);
        QVERIFY(!entryInForce({}, {12, 0}, calendar));
        QVERIFY(!entryInForce({entry(7, 0, 6500, false)}, {12, 0}, calendar));
    }

    void equalTimesKeepTheirOrder()
    {
        std::vector<ScheduleEntry> entries;
        for (int i = 0; i < 100; ++i) // more than any sort puts in order one by one
            entries.push_back(entry(i % 2, 0, i));
        sortByTimeOfDay(entries, calendar);
        QVERIFY(std::ranges::is_sorted(entries, {},
                                       [](const auto &each) { return std::pair(each.time, each.temperature); }));
    }

    void everyChangeKeepsTheOrderIsStoredAndCheckedWhileTheScheduleIsOn()
    {
        Bench bench;
        auto &model = bench.model;
        const auto expect = [&bench](const char *hours, int checks) {
            QStringList shown;
            for (const auto &each : bench.model.scheduleEntries())
                shown += QString::number(*bench.calendar.timeOfDay(each.time).hour);
            QCOMPARE(shown.join(u' '), QLatin1String(hours));
            QVERIFY(bench.stored() == bench.model.scheduleEntries());
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
        QVERIFY(bench.stored()); // remains readable
        QVERIFY(bench.console.lines.back().starts_with("Error encoding schedule entries: "));
    }
};

QTEST_GUILESS_MAIN(Schedule)
#include "Schedule.moc"
