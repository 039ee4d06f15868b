#include "adapters/qt/SystemCalendar.h"

#include <QTest>

#include <climits>
#include <cmath>
#include <limits>

using namespace ambertide;

class SystemCalendarTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void localTimeFollowsTheZoneAndItsClockChanges_data()
    {
        QTest::addColumn<QByteArray>("zone");
        QTest::addColumn<double>("date");
        QTest::addColumn<int>("hour");
        QTest::addColumn<int>("minute");
        // A rule of its own for each zone, so that no zone database is needed.
        const QByteArray berlin = "CET-1CEST,M3.5.0,M10.5.0/3";
        constexpr double spring = 796179600; // 2026-03-26 01:00 UTC
        constexpr double forward = spring + 3 * 86400;
        QTest::newRow("reference date") << QByteArray("UTC0") << 0.0 << 0 << 0;
        QTest::newRow("fractions are cut") << QByteArray("UTC0") << 59.999 << 0 << 0;
        QTest::newRow("before the reference date") << QByteArray("UTC0") << -0.5 << 23 << 59;
        QTest::newRow("half an hour's offset") << QByteArray("IST-5:30") << 0.0 << 5 << 30;
        QTest::newRow("last minute of winter time") << berlin << forward - 60 << 1 << 59;
        QTest::newRow("first minute of summer time") << berlin << forward << 3 << 0;
        QTest::newRow("far past") << QByteArray("UTC0") << -63114076800.0 + 43200 << 12 << 0;
    }
    void localTimeFollowsTheZoneAndItsClockChanges()
    {
        QFETCH(QByteArray, zone);
        QFETCH(double, date);
        qputenv("TZ", zone);
        const auto time = SystemCalendar().timeOfDay({date});
        QTEST(time.hour.value_or(-1), "hour");
        QTEST(time.minute.value_or(-1), "minute");
    }

    void timesOfDayBecomeDatesWhateverTheClocksDoThatDay()
    {
        const auto date = [](const QByteArray &zone, const DateComponents &time) {
            qputenv("TZ", zone);
            return SystemCalendar().date(time).value_or(Date{-1}).secondsSinceReference;
        };
        QCOMPARE(date("IST-5:30", {.hour = 0, .minute = 1}), -19740.0);
        QCOMPARE(date("UTC0", {}), 0.0);
        for (const auto &[hour, minute] : {std::pair(24, 0), {1, 60}, {0, INT_MIN}, {INT_MAX, 0}})
            QCOMPARE(date("UTC0", {.hour = hour, .minute = minute}), -1.0);
        // Clocks go forward from 12:00 to 13:00 on the first Monday of January.
        const QByteArray leap = "STD0DST,M1.1.1/12,M10.5.0";
        QCOMPARE(date(leap, {.hour = 12, .minute = 30}), 86400 + 11.5 * 3600); // the day after
        QCOMPARE(date(leap, {.hour = 13, .minute = 0}), 12 * 3600.0);
    }

    void whatIsNoDateHasNoTimeOfDay()
    {
        for (const double date : {std::numeric_limits<double>::infinity(), std::nan(""), 1e300, -1e18})
            QVERIFY(SystemCalendar().timeOfDay({date}) == DateComponents());
    }
};

QTEST_GUILESS_MAIN(SystemCalendarTest)
#include "SystemCalendar.moc"
