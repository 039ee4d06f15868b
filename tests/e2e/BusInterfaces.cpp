#include "e2e/ApplicationProcess.h"
#include "platform/linux/BusNames.h"
#include "platform/qt/SettingsUserDefaults.h"
#include "support/BusCaller.h"

#include <QFile>
#include <QTest>

#include <functional>

using namespace ambertide;

namespace {

constexpr auto registered = "Registering for CLI temperature notifications...";

std::string writeTemperature(BusCaller &caller, double value)
{
    return caller.call(bus_names::applicationPath, "org.freedesktop.DBus.Properties", "Set", "ssv",
                       bus_names::temperatureInterface, "Temperature", "d", value);
}

std::string readProperty(BusCaller &caller, const char *property)
{
    return caller.call(bus_names::applicationPath, "org.freedesktop.DBus.Properties", "Get", "ss",
                       bus_names::temperatureInterface, property);
}

using Request = std::function<std::string(BusCaller &)>;

} // namespace
Q_DECLARE_METATYPE(Request)

class BusInterfacesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyRoadSetsTheTemperatureAndSwitchesTheScheduleOff_data()
    {
        QTest::addColumn<Request>("request");
        QTest::newRow("property") << Request([](auto &caller) { return writeTemperature(caller, 3449); });
        QTest::newRow("desktop action") << Request([](auto &caller) {
            return caller.call(bus_names::applicationPath, bus_names::applicationInterface, "ActivateAction",
                               "sava{sv}", "k3400", 0, 0);
        });
        QTest::newRow("KRunner") << Request([](auto &caller) {
            return caller.call(bus_names::runnerPath, "org.kde.krunner1", "Run", "ss", "k3400", "");
        });
        QTest::newRow("GNOME Shell") << Request([](auto &caller) {
            return caller.call(bus_names::searchProviderPath, "org.gnome.Shell.SearchProvider2", "ActivateResult",
                               "sasu", "k3400", 1, "halogen", 0);
        });
    }
    void everyRoadSetsTheTemperatureAndSwitchesTheScheduleOff()
    {
        QFETCH(Request, request);
        PrivateSession session;
        session.writeSettings("[General]\nAmbertide.Temperature=5000\nAmbertide.ScheduleEnabled=true\n");
        ApplicationProcess application;
        QVERIFY(application.waitForLine(registered));
        BusCaller caller;
        const auto &announced = caller.observe("org.freedesktop.DBus.Properties");
        QCOMPARE(readProperty(caller, "ScheduleEnabled"), std::string("true"));

        QCOMPARE(request(caller), std::string());
        QTRY_VERIFY_WITH_TIMEOUT(session.shows(3400), 20'000);
        QCOMPARE(readProperty(caller, "Temperature"), std::string("3400"));
        QCOMPARE(runTool({QStringLiteral("get")}).output, QByteArray("3400\n"));
        const std::vector<std::string> expected = {"me.tovanu.Ambertide1, {ScheduleEnabled=false}, []",
                                                   "me.tovanu.Ambertide1, {Temperature=3400}, []"};
        QCOMPARE(announced, expected);
        QTRY_COMPARE_WITH_TIMEOUT(SettingsUserDefaults(session.settingsPath()).doubleValue("Ambertide.Temperature"),
                                  3400.0, 20'000);
        QVERIFY(!SettingsUserDefaults(session.settingsPath()).boolValue("Ambertide.ScheduleEnabled"));
    }

    void aRefusedWriteLeavesTheScheduleOn()
    {
        PrivateSession session;
        session.writeSettings("[General]\nAmbertide.Temperature=5000\nAmbertide.ScheduleEnabled=true\n");
        ApplicationProcess application;
        QVERIFY(application.waitForLine(registered));
        BusCaller caller;
        for (const double refused : {949.0, 6550.0}) {
            QCOMPARE(
                writeTemperature(caller, refused),
                std::string("org.freedesktop.DBus.Error.InvalidArgs: The temperature must be between 1000 and 6500 K"));
        }
        QCOMPARE(readProperty(caller, "Temperature"), std::string("5000"));
        QCOMPARE(readProperty(caller, "ScheduleEnabled"), std::string("true"));
        QCOMPARE(writeTemperature(caller, 950), std::string());
        QCOMPARE(readProperty(caller, "Temperature"), std::string("1000"));
    }

    void theBusStartsItForACall_data()
    {
        QTest::addColumn<Request>("request");
        QTest::addColumn<std::string>("reply");
        QTest::addColumn<double>("temperature");
        QTest::newRow("search") << Request([](auto &caller) {
            return caller.call(bus_names::searchProviderPath, "org.gnome.Shell.SearchProvider2", "GetInitialResultSet",
                               "as", 1, "halogen");
        }) << std::string("[k3400]")
                                << 5500.0;
        QTest::newRow("action") << Request([](auto &caller) {
            return caller.call(bus_names::applicationPath, bus_names::applicationInterface, "ActivateAction",
                               "sava{sv}", "k2700", 0, 0);
        }) << std::string() << 2700.0;
        QTest::newRow("property") << Request([](auto &caller) { return writeTemperature(caller, 3000); })
                                  << std::string() << 3000.0;
    }
    void theBusStartsItForACall()
    {
        QFETCH(Request, request);
        QFETCH(double, temperature);
        PrivateSession session;
        session.writeSettings("[General]\nAmbertide.Temperature=5500\n");
        session.bus.addService(bus_names::application, AMBERTIDE_BUNDLE "/Contents/MacOS/Ambertide");
        BusCaller caller;
        QTEST(request(caller), "reply");
        QTRY_VERIFY_WITH_TIMEOUT(session.shows(temperature), 20'000);
        QCOMPARE(runTool({QStringLiteral("get")}).output.toDouble(), temperature);
        QVERIFY(activateAction("quit"));
        QTRY_VERIFY_WITH_TIMEOUT(session.isRestored(), 20'000);
    }
};

QTEST_GUILESS_MAIN(BusInterfacesTest)
#include "BusInterfaces.moc"
