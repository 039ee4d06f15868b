#include "model/ScheduleEntry.h"

#include "support/FakeCalendar.h"

#include <QTest>

#include <optional>

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
    void temperaturesReadAsPeopleSayThem_data()
    {
        QTest::addColumn<double>("temperature");
        QTest::addColumn<QString>("text");
        QTest::newRow("neutral") << 6500.0 << QStringLiteral("Normal (Daylight)");
        QTest::newRow("cut, not rounded") << 6499.5 << QStringLiteral("6499K");
        QTest::newRow("beyond an integer") << -1e20 << QStringLiteral("-100000000000000000000K");
    }
    void temperaturesReadAsPeopleSayThem()
    {
        QFETCH(double, temperature);
        QTEST(entry(0, 0, temperature).temperatureString(), "text");
    }

    void theStoredFormIsReadBackAsItWas()
    {
        const std::vector<ScheduleEntry> entries = {
            entry(7, 0, 6500),
            entry(21, 30, 3400.5, false),
            {.time = {-62135553600.25}, .temperature = 1e300, .isEnabled = true}};
        const auto decoded = decodeSchedule(encodeSchedule(entries));
        QVERIFY(decoded.entries == entries);
        QVERIFY(decodeSchedule(encodeSchedule({})).entries == std::vector<ScheduleEntry>());
    }

    void theStoredFormHasItsFourMembersInTheirKinds()
    {
        const ScheduleEntry stored = {.id = QUuid::fromString(QStringLiteral("{0b5e4aee-9d54-4d1f-a9b9-8fd1a3a0d5c1}")),
                                      .time = {12.5},
                                      .temperature = 3400,
                                      .isEnabled = true};
        const auto json = QByteArray::fromStdString(encodeSchedule(std::vector{stored}));
        for (const char *member : {"\"id\":\"0B5E4AEE-9D54-4D1F-A9B9-8FD1A3A0D5C1\"", "\"time\":12.5",
                                   "\"temperature\":3400", "\"isEnabled\":true"})
            QVERIFY2(json.contains(member), json.constData());
    }

    void whatIsNoScheduleDoesNotDecodeAndSaysWhy_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<QString>("reason");
        const QByteArray good =
            R"({"id":"0B5E4AEE-9D54-4D1F-A9B9-8FD1A3A0D5C1","time":0,"temperature":1,"isEnabled":true})";
        const auto altered = [&](const char *from, const char *to) {
            return '[' + QByteArray(good).replace(from, to) + ']';
        };
        const auto missing = [](const char *member) { return QStringLiteral("\"%1\"").arg(QLatin1String(member)); };
        QTest::newRow("one of two lacks a member")
            << '[' + good + ',' + QByteArray(good).replace("isEnabled", "enabled") + ']' << QStringLiteral("entry 2 ");
        QTest::newRow("number as a flag") << altered("true", "1") << missing("isEnabled");
        QTest::newRow("text as a time") << altered("\"time\":0", "\"time\":\"0\"") << missing("time");
        QTest::newRow("shortened identifier") << altered("0B5E4AEE", "0B5E4AE") << missing("id");
        QTest::newRow("identifier in braces") << altered("\"0B5E", "\"{0B5E") << missing("id");
        QTest::newRow("object") << good << QStringLiteral("not a list");
        QTest::newRow("list of numbers") << QByteArray("[1]") << missing("id");
        QTest::newRow("nothing") << QByteArray() << QString();
        QTest::newRow("deep nesting") << QByteArray("[").repeated(100'000) << QString();
    }
    void whatIsNoScheduleDoesNotDecodeAndSaysWhy()
    {
        QFETCH(QByteArray, json);
        QFETCH(QString, reason);
        const auto decoded = decodeSchedule({json.constData(), static_cast<std::size_t>(json.size())});
        QVERIFY(!decoded.entries);
        QVERIFY2(!decoded.error.isEmpty() && decoded.error.contains(reason), qPrintable(decoded.error));
    }

    void theEntryInForceIsTheLastOneReached_data()
    {
        QTest::addColumn<int>("hour");
        QTest::addColumn<int>("minute");
        QTest::addColumn<double>("temperature");
        QTest::newRow("a minute before the evening") << 20 << 59 << 6500.0;
        QTest::newRow("the evening's first minute") << 21 << 0 << 3400.0;
        QTest::newRow("past midnight") << 2 << 0 << 2700.0;
        QTest::newRow("a minute before the morning") << 6 << 59 << 2700.0;
        QTest::newRow("the morning's first minute") << 7 << 0 << 6500.0;
    }
    void theEntryInForceIsTheLastOneReached()
    {
        QFETCH(int, hour);
        QFETCH(int, minute);
        const std::vector entries = {entry(23, 30, 2700), entry(7, 0, 6500), entry(8, 0, 1000, false),
                                     entry(21, 0, 3400)};
        const auto inForce = entryInForce(entries, {hour, minute}, calendar);
        QTEST(inForce.value().temperature, "temperature");
    }

    void disabledEntriesAreNeverInForceAndEqualTimesKeepTheirOrder()
    {
        QVERIFY(!entryInForce({}, {12, 0}, calendar));
        QVERIFY(!entryInForce({entry(7, 0, 6500, false)}, {12, 0}, calendar));
        QCOMPARE(entryInForce({entry(7, 0, 6500), entry(23, 30, 2700, false), entry(21, 0, 3400)}, {2, 0}, calendar)
                     ->temperature,
                 3400.0);
        QCOMPARE(
            entryInForce({entry(21, 0, 3400), entry(21, 0, 3000), entry(7, 0, 6500)}, {21, 0}, calendar)->temperature,
            3000.0);
    }
};

QTEST_GUILESS_MAIN(ScheduleEntryTest)
#include "ScheduleEntry.moc"
