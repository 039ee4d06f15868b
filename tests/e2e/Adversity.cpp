#include "adapters/linux/bus/DBusNotificationCenter.h"
#include "adapters/qt/SettingsUserDefaults.h"
#include "e2e/ApplicationProcess.h"
#include "protocol/Notifications.h"

#include <limits>

using namespace ambertide;

namespace {

[[maybe_unused]] std::int64_t privateMemory(pid_t process)
{
    std::ifstream lines("/proc/" + std::to_string(process) + "/smaps_rollup");
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("Private_Dirty:"))
            return std::stoll(line.substr(14));
    }
    return 0;
}

} // namespace

class AdversityTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void itRunsOnWhateverIsMissing()
    {
        // How many lines, with the one that it is registered.
        for (const auto &[variable, value, complaint, lines] :
             {std::tuple("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus", "No session bus", 2),
              {"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent/bus", "No system bus", 2},
              {"DISPLAY", ":54321", "Cannot reach the X server :54321", 2},
              {"DISPLAY", "", "Displays cannot be tinted", 2},
              {"WAYLAND_DISPLAY", "wayland-nonexistent", "Displays cannot be tinted", 3}}) { // windows go elsewhere
            PrivateSession session;
            session.writeSettings("[General]\nAmbertide.Temperature=3000\n");
            const auto before = qgetenv(variable);
            qputenv(variable, value);
            ApplicationProcess application;
            qputenv(variable, before);
            QVERIFY2(application.waitForLine(complaint), value);
            QVERIFY2(application.waitUntilRegistered(), value);
            if (QByteArray(variable).contains("BUS"))
                QTRY_VERIFY_WITH_TIMEOUT(session.shows(3000), patience);
            else
                QCOMPARE(runTool("get"), QByteArray("3000\n"));
            auto printed = application.printed().trimmed().split('\n');
            printed.removeIf([](const auto &line) { return line.startsWith("This desktop shows no tray icons"); });
            QCOMPARE(printed.size(), lines);
            application.sendSignal(SIGTERM);
            QCOMPARE(application.waitForEnd(), 0);
        }
    }

    void aSecondCopyEndsAtOnceWhateverTheFirstIsDoing()
    {
        PrivateSession session;
        session.writeSettings("[General]\nAmbertide.Temperature=3000\n");
        ApplicationProcess first;
        QTRY_VERIFY_WITH_TIMEOUT(session.shows(3000), patience);
        for (const int signal : {SIGCONT, SIGSTOP}) {
            first.sendSignal(signal);
            ApplicationProcess second;
            QVERIFY(second.waitForLine("Another instance of Ambertide is already running (PID: " +
                                       QByteArray::number(first.processIdentifier()) + ")\n"));
            QCOMPARE(second.waitForEnd(), 0);
            QVERIFY(session.shows(3000)); // the second has left the displays alone
        }
        first.sendSignal(SIGCONT);
        QVERIFY(first.isRunning());
    }

    void aMuteBusKeepsNoTintBack()
    {
        PrivateSession session;
        session.writeSettings("[General]\nAmbertide.Temperature=3000\n");
        session.bus.freeze();
        ApplicationProcess application;
        QTRY_VERIFY_WITH_TIMEOUT(session.isTinted(), patience);
        session.bus.thaw();
        QTRY_COMPARE_WITH_TIMEOUT(runTool("get"), QByteArray("3000\n"), patience);
    }

    void aFloodOfHostilePostsNeitherStopsNorFeedsIt()
    {
        PrivateSession session;
        // Without the panel, which otherwise opens some seconds later and takes a megabyte.
        ApplicationProcess application({QStringLiteral("--at-login")});
        QTRY_COMPARE_WITH_TIMEOUT(runTool("get"), QByteArray("6500\n"), patience);
        DBusSession bus(SdBusKind::session);
        DBusNotificationCenter center(bus);
        const std::vector<std::optional<UserInfo>> payloads = {
            std::nullopt,
            UserInfo{{"temperature", std::string(10'000, '9')}},
            UserInfo{{"temperature", std::numeric_limits<std::int64_t>::min()}},
            UserInfo{{"temperature", std::int64_t{2500}}},
            UserInfo{{"temperature", 5000.0}},
        };
        const auto flood = [&](int count, std::int64_t last) {
            for (int i = 0; i < count; ++i) {
                center.post({notifications::updateTemperature, payloads[static_cast<std::size_t>(i) % payloads.size()]},
                            Delivery::standard);
                sd_bus_flush(bus.bus());
            }
            center.post(notifications::withTemperature(notifications::updateTemperature, last), Delivery::standard);
            sd_bus_flush(bus.bus());
            QTRY_COMPARE_WITH_TIMEOUT(runTool("get"), QByteArray::number(last) + '\n', 60'000);
        };
        flood(1'000, 3200);
        [[maybe_unused]] const auto before = privateMemory(application.processIdentifier());
        flood(9'000, 3300);
#ifndef __SANITIZE_ADDRESS__ // which keeps freed memory to itself
        QVERIFY(privateMemory(application.processIdentifier()) - before < 256);
#endif
        QTRY_VERIFY_WITH_TIMEOUT(session.shows(3300), patience);
    }

    void theEndOfTheServerEndsTheApplicationWithoutAHang()
    {
        PrivateSession session;
        ApplicationProcess application;
        QVERIFY(application.waitUntilRegistered());
        QCOMPARE(runTool("set 4000"), QByteArray());
        QVERIFY(application.waitForLine("Setting temperature to 4000K"));
        QCOMPARE(runTool("get"), QByteArray("4000\n"));
        session.server.stop();
        QVERIFY(application.waitForEnd() != -1000);
        // It was about to be written.
        QCOMPARE(SettingsUserDefaults(session.settingsPath()).doubleValue("Ambertide.Temperature"), 4000.0);
    }
};

QTEST_GUILESS_MAIN(AdversityTest)
#include "Adversity.moc"
