#include "adapters/linux/bus/DBusNotificationCenter.h"
#include "e2e/ApplicationProcess.h"
#include "protocol/Notifications.h"

#include <QFile>
#include <QTest>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <limits>
#include <memory>
#include <string>
#include <vector>

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
    void itRunsOnWhateverIsMissing_data()
    {
        QTest::addColumn<QByteArray>("variable");
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<QByteArray>("complaint");
        const QByteArray nowhere = "unix:path=/nonexistent/bus";
        QTest::newRow("session bus") << QByteArray("DBUS_SESSION_BUS_ADDRESS") << nowhere
                                     << QByteArray("No session bus");
        QTest::newRow("system bus") << QByteArray("DBUS_SYSTEM_BUS_ADDRESS") << nowhere << QByteArray("No system bus");
        QTest::newRow("display server") << QByteArray("DISPLAY") << QByteArray(":54321")
                                        << QByteArray("Cannot reach the X server :54321");
        QTest::newRow("display variable")
            << QByteArray("DISPLAY") << QByteArray() << QByteArray("Displays cannot be tinted");
        QTest::newRow("Wayland compositor") << QByteArray("WAYLAND_DISPLAY") << QByteArray("wayland-nonexistent")
                                            << QByteArray("Displays cannot be tinted");
    }
    void itRunsOnWhateverIsMissing()
    {
        QFETCH(QByteArray, variable);
        QFETCH(QByteArray, value);
        QFETCH(QByteArray, complaint);
        PrivateSession session;
        session.writeSettings("[General]\nAmbertide.Temperature=3000\n");
        const auto before = qgetenv(variable.constData());
        qputenv(variable.constData(), value);
        ApplicationProcess application;
        qputenv(variable.constData(), before);
        QVERIFY(application.waitForLine(complaint));
        QVERIFY(application.waitUntilRegistered());
        if (variable.contains("BUS"))
            QTRY_VERIFY_WITH_TIMEOUT(session.shows(3000), 20'000);
        if (variable.contains("DISPLAY"))
            QCOMPARE(runTool({QStringLiteral("get")}), QByteArray("3000\n"));
        const auto lines = application.printed().split('\n');
        QCOMPARE(std::ranges::count_if(lines,
                                       [](const QByteArray &line) {
                                           return !line.isEmpty() &&
                                                  !line.startsWith(
                                                      "This desktop shows no tray icons"); // some time later
                                       }),
                 variable == "WAYLAND_DISPLAY" ? 3 : 2); // the windows go elsewhere
        application.sendSignal(SIGTERM);
        QCOMPARE(application.waitForEnd(), 0);
    }

    void brokenSettingsAreKeptAsideAndTheApplicationWorks()
    {
        PrivateSession session;
        session.writeSettings(QByteArray("\0\xff[General]\nAmbertide.Temperature", 32));
        ApplicationProcess application;
        QVERIFY(application.waitForLine("The settings file "));
        QVERIFY(application.waitUntilRegistered());
        QCOMPARE(runTool({QStringLiteral("set"), QStringLiteral("2800")}), QByteArray());
        QTRY_VERIFY_WITH_TIMEOUT(session.shows(2800), 20'000);
        QVERIFY(QFile::exists(session.settingsPath() + QStringLiteral(".broken")));
    }

    void aSecondCopyEndsAtOnceWhateverTheFirstIsDoing_data()
    {
        QTest::addColumn<bool>("isStopped");
        QTest::newRow("idle") << false;
        QTest::newRow("stopped") << true;
    }
    void aSecondCopyEndsAtOnceWhateverTheFirstIsDoing()
    {
        QFETCH(bool, isStopped);
        PrivateSession session;
        session.writeSettings("[General]\nAmbertide.Temperature=3000\n");
        ApplicationProcess first;
        QTRY_VERIFY_WITH_TIMEOUT(session.shows(3000), 20'000);
        if (isStopped)
            first.sendSignal(SIGSTOP);
        ApplicationProcess second;
        QVERIFY(second.waitForLine("Another instance of Ambertide is already running (PID: " +
                                   QByteArray::number(first.processIdentifier()) + ")\n"));
        QCOMPARE(second.waitForEnd(), 0);
        QVERIFY(session.shows(3000)); // the second has left the displays alone
        first.sendSignal(SIGCONT);
        QVERIFY(first.isRunning());
    }

    void ofCopiesStartedTogetherOneStays()
    {
        PrivateSession session;
        std::vector<std::unique_ptr<ApplicationProcess>> copies;
        for (int i = 0; i < 4; ++i)
            copies.push_back(std::make_unique<ApplicationProcess>());
        const auto runningCount = [&copies] {
            return std::ranges::count_if(copies, [](auto &copy) {
                QCoreApplication::processEvents();
                return copy->isRunning();
            });
        };
        QTRY_COMPARE_WITH_TIMEOUT(runningCount(), 1, 20'000);
        QTRY_COMPARE_WITH_TIMEOUT(runTool({QStringLiteral("get")}), QByteArray("6500\n"), 20'000);
        QCOMPARE(runningCount(), 1);
    }

    void aFloodOfHostilePostsNeitherStopsNorFeedsIt()
    {
        PrivateSession session;
        ApplicationProcess application(ApplicationProcess::Output::discarded);
        QTRY_COMPARE_WITH_TIMEOUT(runTool({QStringLiteral("get")}), QByteArray("6500\n"), 20'000);
        DBusSession bus(SdBusKind::session);
        DBusNotificationCenter center(bus);
        const std::vector<std::optional<UserInfo>> payloads = {
            std::nullopt,
            UserInfo{{"temperature", std::string(10'000, '9')}},
            UserInfo{{"temperature", std::numeric_limits<double>::quiet_NaN()}},
            UserInfo{{"temperature", std::numeric_limits<std::int64_t>::min()}},
            UserInfo{{"temperature", true}},
            UserInfo{{"temperature", std::int64_t{2500}}},
            UserInfo{{"temperature", std::int64_t{5000}}},
        };
        const auto flood = [&](int count, std::int64_t last) {
            for (int i = 0; i < count; ++i) {
                center.post({notifications::updateTemperature, payloads[static_cast<std::size_t>(i) % payloads.size()]},
                            Delivery::standard);
                sd_bus_flush(bus.bus());
            }
            center.post(notifications::withTemperature(notifications::updateTemperature, last), Delivery::standard);
            sd_bus_flush(bus.bus());
            QTRY_COMPARE_WITH_TIMEOUT(runTool({QStringLiteral("get")}), QByteArray::number(last) + '\n', 60'000);
        };
        flood(1'000, 3200);
        [[maybe_unused]] const auto before = privateMemory(application.processIdentifier());
        flood(9'000, 3300);
#ifndef __SANITIZE_ADDRESS__ // which keeps freed memory to itself
        QVERIFY(privateMemory(application.processIdentifier()) - before < 1024);
#endif
        QTRY_VERIFY_WITH_TIMEOUT(session.shows(3300), 20'000);
    }

    void theEndOfTheServerEndsTheApplicationWithoutAHang()
    {
        PrivateSession session;
        ApplicationProcess application;
        QVERIFY(application.waitUntilRegistered());
        session.server.stop();
        QVERIFY(application.waitForEnd() != -1000);
    }
};

QTEST_GUILESS_MAIN(AdversityTest)
#include "Adversity.moc"
