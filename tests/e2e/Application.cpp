#include "adapters/qt/SettingsUserDefaults.h"
#include "display/DisplayManager.h"
#include "support/ChildProcess.h"
#include "support/PrivateBus.h"
#include "support/PrivateXServer.h"
#include "support/RandrClient.h"
#include "support/busctl.h"

#include <QRandomGenerator>

#include <sys/wait.h>

using namespace ambertide;

namespace {

constexpr int patience = 20'000; ///< ms; only a failure takes as long

/// A session of the test's own: an X server, both buses and a home, which the programs started meanwhile find in the
/// environment.
class PrivateSession
{
public:
    explicit PrivateSession(PrivateXServer::Kind kind = PrivateXServer::Kind::framebuffer) : server(kind)
    {
        qputenv("DISPLAY", QByteArray::fromStdString(server.display()));
        for (const char *variable : {"XDG_CONFIG_HOME", "XDG_RUNTIME_DIR"})
            qputenv(variable, m_home.path().toUtf8());
        for (const char *variable : {"WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
            qunsetenv(variable);
    }

    PrivateXServer server;
    PrivateBus bus;

    /// Whether every active display has the white point of this temperature.
    bool shows(double temperature)
    {
        const auto tables = DisplayManager::createGammaTables(temperature);
        const auto isAt = [](int level, float share) { return std::abs(level - 65535 * double(share)) <= 1; };
        return std::ranges::all_of(m_client.activeCrtcs(), [&](auto crtc) {
            const auto [red, green, blue] = m_client.whitePoint(crtc);
            return isAt(red, tables.red[255]) && isAt(green, tables.green[255]) && isAt(blue, tables.blue[255]);
        });
    }
    /// Whether the first display is tinted, with whatever temperature.
    bool isTinted()
    {
        const auto [red, green, blue] = m_client.whitePoint(m_client.crtcs().front());
        return red == 65535 && blue < 65000;
    }
    bool isRestored() { return m_client.showsIdentityEverywhere(); }

    QString settingsPath() const { return m_home.filePath(QStringLiteral("ambertide/defaults.ini")); }
    void writeSettings(const char *content)
    {
        const std::filesystem::path path = settingsPath().toStdString();
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path) << content;
    }

private:
    PrivateBus m_systemBus{"DBUS_SYSTEM_BUS_ADDRESS"};
    QTemporaryDir m_home;
    RandrClient m_client{server.display()};
};

/// One run of the built application. Killed with this object if it still runs.
class ApplicationProcess : public QProcess
{
public:
    ApplicationProcess()
    {
        setProcessChannelMode(MergedChannels);
        start(QStringLiteral(AMBERTIDE_BUNDLE "/Contents/MacOS/Ambertide"), {});
        waitForStarted();
    }

    /// Waits for a line that begins like this.
    bool waitForLine(const QByteArray &beginning)
    {
        return QTest::qWaitFor(
            [&] {
                m_printed += readAll();
                return ('\n' + m_printed).contains('\n' + beginning);
            },
            patience);
    }
    /// Waits until it takes requests.
    bool waitUntilRegistered() { return waitForLine("Registering for CLI temperature notifications..."); }
    QByteArray printed() const { return m_printed; }
    void sendSignal(int signal) const { ::kill(static_cast<pid_t>(processId()), signal); }
    /// The exit status, or minus the signal that ended it; -1000 when it does not end.
    int waitForEnd()
    {
        if (state() != NotRunning && !waitForFinished(patience))
            return -1000;
        return exitStatus() == NormalExit ? exitCode() : -exitCode();
    }

private:
    QByteArray m_printed;
};

/// Runs the command-line tool of the bundle. What it printed, or "failed" when its status is not 0.
QByteArray runTool(const QByteArray &arguments)
{
    QProcess process;
    process.start(QStringLiteral(AMBERTIDE_BUNDLE "/Contents/MacOS/AmbertideCLI"),
                  QString::fromUtf8(arguments).split(u' '));
    process.waitForFinished(patience);
    return process.exitCode() == 0 ? process.readAllStandardOutput() : QByteArray("failed");
}

QString call(const char *arguments) { return busctl(QString::fromLatin1(arguments)).simplified(); }

/// What it says to that, if anything.
QString quit()
{
    return call("call me.tovanu.Ambertide /me/tovanu/Ambertide org.freedesktop.Application ActivateAction sava{sv} "
                "quit 0 0");
}

} // namespace

class ApplicationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aCallOfAnotherProgramStartsItAndTintsEveryDisplay()
    {
        PrivateSession session(PrivateXServer::Kind::dummy);
        session.server.switchOn(QStringLiteral("DUMMY1"));
        session.writeSettings("[General]\nAmbertide.Temperature=5500\nAmbertide.ScheduleEnabled=true\n");
        session.bus.addService("me.tovanu.Ambertide", AMBERTIDE_BUNDLE "/Contents/MacOS/Ambertide");
        QCOMPARE(call("call me.tovanu.Ambertide /runner org.kde.krunner1 Run ss "
                      "applications:me.tovanu.Ambertide.desktop?action=k3400 any"),
                 QString());
        const auto *const state = "get-property me.tovanu.Ambertide /me/tovanu/Ambertide me.tovanu.Ambertide1 "
                                  "Temperature ScheduleEnabled";
        QTRY_COMPARE_WITH_TIMEOUT(call(state), QStringLiteral("d 3400 b false"), patience);
        QTRY_VERIFY_WITH_TIMEOUT(session.isTinted(), patience);
        session.server.switchOff(QStringLiteral("DUMMY1")); // during the ramp
        session.server.switchOn(QStringLiteral("DUMMY2"));
        QTRY_VERIFY_WITH_TIMEOUT(session.shows(3400), patience);
        QCOMPARE(quit(), QString());
        QTRY_VERIFY_WITH_TIMEOUT(session.isRestored(), patience); // the one that is off as well
    }

    /// AMBERTIDE_TEST_REPETITIONS asks for more rounds, each ended at a random moment of a ramp, and holds the guardian
    /// to half a second.
    void theDisplaysAreGivenBackHoweverItEnds()
    {
        PrivateSession session;
        prctl(PR_SET_CHILD_SUBREAPER, 1); // orphaned guardians become children of this test
        const std::array<QList<int>, 4> ends = {
            {{SIGTERM}, {SIGINT, SIGTERM}, {SIGKILL}, {}}}; // or it is asked to quit
        const int rounds = std::max(1, qEnvironmentVariableIntValue("AMBERTIDE_TEST_REPETITIONS"));
        for (int each = 0; each < 4 * rounds; ++each) {
            const auto &signalNumbers = ends[static_cast<std::size_t>(each % 4)];
            session.writeSettings("[General]\nAmbertide.Temperature=3000\n");
            ApplicationProcess application;
            QTRY_VERIFY_WITH_TIMEOUT(session.isTinted(), patience);
            const pid_t guardian = childOf(static_cast<pid_t>(application.processId()), "AmbertideGuardian");
            QVERIFY(guardian != 0);
            QVERIFY(application.waitUntilRegistered());
            QCOMPARE(runTool("set 4000"), QByteArray());
            if (each >= 4)
                QTest::qWait(QRandomGenerator::global()->bounded(1500));
            if (signalNumbers.isEmpty())
                QCOMPARE(quit(), QString());
            if (signalNumbers.contains(SIGTERM))
                kill(guardian, SIGKILL); // it does so by itself, too
            for (const int signal : signalNumbers)
                application.sendSignal(signal);
            QCOMPARE(application.waitForEnd(), signalNumbers.contains(SIGKILL) ? -SIGKILL : 0);
            QTRY_VERIFY_WITH_TIMEOUT(session.isRestored(), rounds > 1 ? 500 : patience);
            QTRY_VERIFY(waitpid(guardian, nullptr, WNOHANG) != 0);
            if (!signalNumbers.contains(SIGKILL)) // what was set is stored though it ends at once
                QCOMPARE(SettingsUserDefaults(session.settingsPath()).doubleValue("Ambertide.Temperature"), 4000.0);
        }
    }

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
                                       QByteArray::number(first.processId()) + ")\n"));
            QCOMPARE(second.waitForEnd(), 0);
            QVERIFY(session.shows(3000)); // the second has left the displays alone
        }
        first.sendSignal(SIGCONT);
        QCOMPARE(first.state(), QProcess::Running);
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

QTEST_GUILESS_MAIN(ApplicationTest)
#include "Application.moc"
