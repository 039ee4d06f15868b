#include "adapters/linux/displays/randr/RandrBackend.h"
#include "adapters/linux/displays/shared/BackendDisplayServices.h"
#include "support/ChildProcess.h"
#include "support/PrivateColord.h"
#include "support/PrivateXServer.h"
#include "support/RandrClient.h"

#include <QTest>

#include <sys/prctl.h>
#include <sys/wait.h>

#include <csignal>
#include <iostream>

using namespace ambertide;

namespace {

/// A copy of the application, in a process group and by a program of its own.
class Copy : public QProcess
{
public:
    explicit Copy(const PrivateXServer &server)
    {
        const auto program = m_folder.filePath(QStringLiteral("Ambertide"));
        QFile::copy(QCoreApplication::applicationFilePath(), program);
        setChildProcessModifier([] { setpgid(0, 0); });
        start(program, {QStringLiteral("tint"), QString::fromStdString(server.display())});
    }
    /// Shows this level of blue, and at 1 restores the displays.
    void show(const QByteArray &level)
    {
        write(level + '\n');
        while (state() != NotRunning && !canReadLine())
            waitForReadyRead(100);
        readAll();
    }
    /// Whether its guardian ends in time when it is ended like this.
    bool endsGuarded(int signal = SIGKILL)
    {
        const auto process = guardian();
        ::kill(-static_cast<pid_t>(processId()), signal);
        waitForFinished();
        return process > 0 && QTest::qWaitFor([process] { return waitpid(process, nullptr, WNOHANG) == process; }, 500);
    }
    pid_t guardian() const { return childOf(static_cast<pid_t>(processId()), "AmbertideGuardian"); }

private:
    QTemporaryDir m_folder;
};

int runCopy(const char *display)
{
    BackendDisplayServices services([display] {
        return std::make_unique<RandrBackend>(display, AMBERTIDE_BUNDLE "/Contents/MacOS/AmbertideGuardian");
    });
    services.restoreSystemColours(); // and it has connected
    for (float level = 0; std::cin >> level; std::cout << level << std::endl) {
        GammaTables tables{};
        tables.blue.fill(level);
        if (level < 1)
            services.setTransferTables(services.activeDisplays(), tables);
        else
            services.restoreSystemColours();
    }
    return 0;
}

} // namespace

class GuardianTest : public QObject
{
    Q_OBJECT

    const PrivateXServer m_server{PrivateXServer::Kind::framebuffer};
    RandrClient m_client{m_server.display()};
    const xcb_randr_crtc_t m_display = m_client.crtcs().front();

    /// Red at half the level, and blue.
    std::array<int, 2> shown()
    {
        const auto ramp = m_client.ramp(m_display);
        return {ramp[0][128], ramp[2][128]};
    }

private Q_SLOTS:
    void displaysAreGivenBackWhateverEndsTheApplication()
    {
        for (const int signal : {0, SIGKILL, SIGINT}) {
            Copy copy(m_server);
            for (const auto *level : {"0.5", "1", "0.5"})
                copy.show(level);
            QTRY_COMPARE(m_client.ramp(m_display)[2][0], 32768);
            const auto guardian = copy.guardian();
            QVERIFY(guardian > 0);
            for (const int harmless : {SIGTERM, SIGINT, SIGQUIT, SIGHUP, SIGTSTP, SIGPIPE})
                QCOMPARE(kill(guardian, harmless), 0);
            if (signal == 0)
                copy.closeWriteChannel(); // and it returns from main
            // An application that can still does so waits for its guardian.
            QVERIFY(signal == 0 ? copy.waitForFinished() && kill(guardian, 0) != 0 : copy.endsGuarded(signal));
            QVERIFY(m_client.showsIdentityEverywhere());
        }
    }

    void displaysThatWereGivenBackAreLeftAlone()
    {
        Copy copy(m_server);
        copy.show("0.5");
        copy.show("1");
        m_server.xrandr(QStringLiteral("--output screen --gamma 0.5:0.8:0.9"));
        const auto foreign = m_client.ramp(m_display);
        QVERIFY(copy.endsGuarded());
        QCOMPARE(m_client.ramp(m_display), foreign);
    }

    void aCalibrationIsGivenBackAndFollowed()
    {
        if (!PrivateColord::isInstalled())
            QSKIP("colord is not installed");
        PrivateColord colord;
        QVERIFY(colord.start());
        const auto display = colord.addDisplay(QStringLiteral("screen"));
        colord.setProfile(display, colourProfile(calibrationTag<std::uint16_t>(256, 65535)));
        constexpr int identity = 32896;
        constexpr int square = 16513; // of that
        Copy copy(m_server);
        copy.show("1");
        QCOMPARE(shown(), (std::array{square, identity}));
        colord.setProfile(display, colourProfile({}));
        QTRY_COMPARE(shown(), (std::array{identity, identity}));
        colord.setProfile(display, colourProfile(calibrationTag<std::uint16_t>(256, 65535)));
        QTRY_COMPARE(shown(), (std::array{square, identity}));

        copy.show("0.5"); // blue; red and green at nothing
        QTRY_COMPARE(shown(), (std::array{0, 32768}));
        QVERIFY(copy.endsGuarded());
        QCOMPARE(shown(), (std::array{square, identity}));
    }

    void aStrangersClaimDoesNotCount()
    {
        Copy copy(m_server);
        copy.show("0.5");
        QTRY_VERIFY(copy.guardian() > 0);
        m_client.takeSelection("_ME_TOVANU_AMBERTIDE");
        copy.show("0.25");
        QTRY_COMPARE(m_client.ramp(m_display)[2][0], 16384);
        m_client.takeSelection("_ME_TOVANU_AMBERTIDE");
        QVERIFY(copy.endsGuarded());
        QVERIFY(m_client.showsIdentityEverywhere());
    }

    void theNewestCopyHasTheDisplaysAndAGuardian()
    {
        Copy old(m_server);
        old.show("0.5");
        QTRY_VERIFY(old.guardian() > 0);
        {
            Copy brief(m_server);
            brief.show("0.25");
            QTRY_COMPARE(m_client.ramp(m_display)[2][0], 16384);
            old.show("0.75");
            old.show("1");
            QCOMPARE(m_client.ramp(m_display)[2][0], 16384);
            QVERIFY(brief.endsGuarded());
            QVERIFY(m_client.showsIdentityEverywhere());
        }
        old.show("0.5");
        QTRY_COMPARE(m_client.ramp(m_display)[2][0], 32768);
        Copy young(m_server);
        young.show("0.25");
        QTRY_VERIFY(young.guardian() > 0);
        const auto youngGuardian = young.guardian();
        QVERIFY(old.endsGuarded());
        QTRY_COMPARE(m_client.ramp(m_display)[2][0], 16384);

        kill(youngGuardian, SIGKILL); // is replaced at once
        QTRY_VERIFY(young.guardian() != 0 && young.guardian() != youngGuardian);
        const auto secondGuardian = young.guardian();
        kill(secondGuardian, SIGSTOP); // takes effect some time later, and it is replaced with the next write
        QTRY_VERIFY((young.show("0.5"), young.guardian() != 0 && young.guardian() != secondGuardian));
        young.show("1");
        kill(young.guardian(), SIGKILL); // is not replaced while nothing is tinted, and its channel not watched
        QTRY_COMPARE(young.guardian(), 0);
        QTRY_VERIFY((young.show("0.5"), young.guardian() > 0));
        QVERIFY(young.endsGuarded());
        QVERIFY(m_client.showsIdentityEverywhere());
    }
};

int main(int argc, char *argv[])
{
    if (argc == 3 && qstrcmp(argv[1], "tint") == 0)
        return runCopy(argv[2]);
    const QCoreApplication application(argc, argv);
    prctl(PR_SET_CHILD_SUBREAPER, 1); // orphaned guardians become children of this test
    GuardianTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "Guardian.moc"
