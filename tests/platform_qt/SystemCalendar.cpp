#include "platform/qt/SystemCalendar.h"

#include <QTest>

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

    void timesOfDayBecomeDatesWhateverTheClocksDoThatDay_data()
    {
        QTest::addColumn<QByteArray>("zone");
        QTest::addColumn<int>("hour"); // -1 when it is not known
        QTest::addColumn<int>("minute");
        QTest::addColumn<double>("date"); // NaN when there is none
        const QByteArray utc = "UTC0";
        QTest::newRow("noon") << utc << 12 << 0 << 43200.0;
        QTest::newRow("east of Greenwich") << QByteArray("IST-5:30") << 0 << 1 << -19740.0;
        QTest::newRow("parts not known") << utc << -1 << -1 << 0.0;
        QTest::newRow("no such hour") << utc << 24 << 0 << std::nan("");
        QTest::newRow("no such minute") << utc << 1 << 60 << std::nan("");
        QTest::newRow("before midnight") << utc << 0 << std::numeric_limits<int>::min() << std::nan("");
        QTest::newRow("too large") << utc << std::numeric_limits<int>::max() << 0 << std::nan("");
        // Clocks go forward from 12:00 to 13:00 on the first Monday of January.
        const QByteArray leap = "STD0DST,M1.1.1/12,M10.5.0";
        QTest::newRow("left out that day") << leap << 12 << 30 << 86400 + 11.5 * 3600;
        QTest::newRow("after the change") << leap << 13 << 0 << 12 * 3600.0;
    }
    void timesOfDayBecomeDatesWhateverTheClocksDoThatDay()
    {
        QFETCH(QByteArray, zone);
        QFETCH(int, hour);
        QFETCH(int, minute);
        QFETCH(double, date);
        qputenv("TZ", zone);
        const auto known = [](int part) { return part == -1 ? std::optional<int>() : part; };
        const auto made = SystemCalendar().date({.hour = known(hour), .minute = known(minute)});
        QCOMPARE(made.has_value(), !std::isnan(date));
        if (made)
            QCOMPARE(made->secondsSinceReference, date);
    }

    void whatIsNoDateHasNoTimeOfDay()
    {
        for (const double date : {std::numeric_limits<double>::infinity(), std::nan(""), 1e300, -1e18})
            QVERIFY(SystemCalendar().timeOfDay({date}) == DateComponents());
    }
};

QTEST_GUILESS_MAIN(SystemCalendarTest)
#include "SystemCalendar.moc"
