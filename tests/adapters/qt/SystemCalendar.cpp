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
    void localTimeFollowsTheZoneAndItsClockChanges()
    {
        // A rule of its own for each zone, so that no zone database is needed.
        const char *const berlin = "CET-1CEST,M3.5.0,M10.5.0/3";
        constexpr double forward = 796438800; // 2026-03-29 01:00 UTC
        const auto timeOf = [](const char *zone, double date) {
            qputenv("TZ", zone);
            const auto time = SystemCalendar().timeOfDay({date});
            return 100 * time.hour.value_or(-1) + time.minute.value_or(-1);
        };
        QCOMPARE(timeOf("UTC0", -0.5), 2359);
        QCOMPARE(timeOf("IST-5:30", 0), 530);
        QCOMPARE(timeOf(berlin, forward), 300);                 // after 1:59
        QCOMPARE(timeOf("UTC0", -63114076800.0 + 43200), 1200); // the year 1
        for (const double date : {std::numeric_limits<double>::infinity(), std::nan(""), 1e300, -1e18})
            QCOMPARE(timeOf("UTC0", date), -101); // no date
    }

    void timesOfDayBecomeDatesWhateverTheClocksDoThatDay()
    {
        const auto date = [](const QByteArray &zone, const DateComponents &time) {
            qputenv("TZ", zone);
            return SystemCalendar().date(time).value_or(Date{-1}).secondsSinceReference;
        };
        QCOMPARE(date("IST-5:30", {.hour = 0, .minute = 1}), -19740.0);
        for (const auto &[hour, minute] : {std::pair(24, 0), {1, 60}, {0, INT_MIN}, {INT_MAX, 0}})
            QCOMPARE(date("UTC0", {.hour = hour, .minute = minute}), -1.0);
        // Clocks go forward from 12:00 to 13:00 on the first Monday of January.
        const QByteArray leap = "STD0DST,M1.1.1/12,M10.5.0";
        QCOMPARE(date(leap, {.hour = 12, .minute = 30}), 86400 + 11.5 * 3600); // the day after
        QCOMPARE(date(leap, {.hour = 13, .minute = 0}), 12 * 3600.0);
    }
};

QTEST_GUILESS_MAIN(SystemCalendarTest)
#include "SystemCalendar.moc"
