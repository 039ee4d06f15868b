#include "platform/linux/BusNames.h"
#include "platform/linux/DBusTemperatureObject.h"
#include "support/BusCaller.h"
#include "support/FakeTemperatureControl.h"
#include "support/PrivateBus.h"

#include <QTest>

#include <limits>

using namespace ambertide;
using namespace std::chrono_literals;

namespace {

constexpr char invalidArguments[] = "org.freedesktop.DBus.Error.InvalidArgs";
constexpr char temperature[] = "Temperature";
constexpr char schedule[] = "ScheduleEnabled";

/// The exported object, under the application's name, and somebody who calls it.
struct Bench
{
    PrivateBus bus;
    DBusSession session{SdBusKind::session};
    FakeTemperatureControl control;
    DBusTemperatureObject object{session, control};
    BusCaller caller;

    Bench()
    {
        sd_bus *ready = session.readyBus(std::chrono::steady_clock::now() + 20s);
        if (sd_bus_request_name(ready, bus_names::application, 0) < 0)
            qFatal("The name cannot be had");
    }
    std::string get(const char *property)
    {
        return caller.call(bus_names::applicationPath, "org.freedesktop.DBus.Properties", "Get", "ss",
                           bus_names::temperatureInterface, property);
    }
    template <typename Value>
    std::string set(const char *property, const char *type, Value value)
    {
        return caller.call(bus_names::applicationPath, "org.freedesktop.DBus.Properties", "Set", "ssv",
                           bus_names::temperatureInterface, property, type, value);
    }
};

} // namespace

class TemperatureObjectTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void propertiesShowTheStateAndTheRange()
    {
        Bench bench;
        QCOMPARE(
            bench.caller.call(bus_names::applicationPath, "org.freedesktop.DBus.Properties", "GetAll", "s",
                              bus_names::temperatureInterface),
            std::string("{Temperature=6500, MinimumTemperature=1000, MaximumTemperature=6500, ScheduleEnabled=true}"));
    }

    void whoReadsAfterWritingGetsWhatWasWritten()
    {
        Bench bench;
        QCOMPARE(bench.set(temperature, "d", 3400.0), std::string());
        QCOMPARE(bench.get(temperature), std::string("3400"));
        QCOMPARE(bench.get(schedule), std::string("false"));
        QCOMPARE(bench.set(schedule, "b", 1), std::string());
        QCOMPARE(bench.get(schedule), std::string("true"));
    }

    void refusedWritesSaySoAndChangeNothing_data()
    {
        QTest::addColumn<double>("value");
        QTest::newRow("too warm") << 999.0;
        QTest::newRow("too cool") << 6501.0;
        QTest::newRow("negative") << -3400.0;
        QTest::newRow("infinite") << std::numeric_limits<double>::infinity();
        QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN();
    }
    void refusedWritesSaySoAndChangeNothing()
    {
        QFETCH(double, value);
        Bench bench;
        const auto &announced = bench.caller.observe("org.freedesktop.DBus.Properties");
        QCOMPARE(bench.set(temperature, "d", value),
                 std::string(invalidArguments) + ": The temperature must be between 1000 and 6500 K");
        QCOMPARE(bench.get(temperature), std::string("6500"));
        QCOMPARE(bench.get(schedule), std::string("true"));
        QVERIFY(announced.empty());
    }

    void writesOfAnotherKindAreErrors()
    {
        Bench bench;
        const auto isError = [](const std::string &reply) { return reply.starts_with("org.freedesktop.DBus.Error."); };
        QVERIFY(isError(bench.set(temperature, "s", "3400")));
        QVERIFY(isError(bench.set(temperature, "i", 3400)));
        QVERIFY(isError(bench.set(schedule, "d", 1.0)));
        QVERIFY(isError(bench.set("MinimumTemperature", "d", 500.0)));
        QVERIFY(isError(bench.set("Unknown", "d", 3400.0)));
        QCOMPARE(bench.get(temperature), std::string("6500"));
    }

    void onlyWhatHasChangedIsAnnounced()
    {
        Bench bench;
        const auto &announced = bench.caller.observe("org.freedesktop.DBus.Properties");
        bench.get(temperature); // the bus has the match now
        bench.control.changed();
        bench.set(temperature, "d", 3400.0);
        bench.set(temperature, "d", 3400.0);
        bench.control.currentTemperature = 2700;
        bench.control.isScheduleEnabled = true;
        bench.control.changed();
        bench.get(temperature);
        const std::vector<std::string> expected = {
            "me.tovanu.Ambertide1, {ScheduleEnabled=false}, []",
            "me.tovanu.Ambertide1, {Temperature=3400}, []",
            "me.tovanu.Ambertide1, {Temperature=2700, ScheduleEnabled=true}, []",
        };
        QCOMPARE(announced, expected);
    }
};

QTEST_GUILESS_MAIN(TemperatureObjectTest)
#include "TemperatureObject.moc"
