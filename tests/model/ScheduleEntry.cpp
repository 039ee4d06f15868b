#include "model/ScheduleEntry.h"

#include "support/Fakes.h"

#include <QTest>

#include <algorithm>
#include <map>

using namespace ambertide;

class ScheduleEntryTest : public QObject
{
    Q_OBJECT

    const FakeCalendar calendar;

    static ScheduleEntry entry(int hour, int minute, double temperature, bool isEnabled = true)
    {
        return {.time = FakeCalendar::at(hour, minute), .temperature = temperature, .isEnabled = isEnabled};
    }

private Q_SLOTS:
    void temperaturesReadAsPeopleSayThem()
    {
        QCOMPARE(entry(0, 0, 6500).temperatureString(), QStringLiteral("Normal (Daylight)"));
        QCOMPARE(entry(0, 0, 6499.5).temperatureString(), QStringLiteral("6499K")); // cut, not rounded
        QCOMPARE(entry(0, 0, -1e20).temperatureString(), QStringLiteral("-100000000000000000000K"));
    }

    void theStoredFormHasItsFourMembersAndIsReadBackAsItWas()
    {
        const std::vector<ScheduleEntry> entries = {
            {.id = QUuid::fromString(QStringLiteral("{0b5e4aee-9d54-4d1f-a9b9-8fd1a3a0d5c1}")),
             .time = {12.5},
             .temperature = 3400},
            entry(21, 30, 3400.5, false),
            {.time = {-62135553600.25}, .temperature = 1e300, .isEnabled = true}};
        const auto json = QByteArray::fromStdString(encodeSchedule(entries));
        for (const char *member : {"\"id\":\"0B5E4AEE-9D54-4D1F-A9B9-8FD1A3A0D5C1\"", "\"time\":12.5",
                                   "\"temperature\":3400", "\"isEnabled\":true"})
            QVERIFY2(json.contains(member), json.constData());
        QVERIFY(decodeSchedule(json.toStdString()).entries == entries);
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
};

QTEST_GUILESS_MAIN(ScheduleEntryTest)
#include "ScheduleEntry.moc"
