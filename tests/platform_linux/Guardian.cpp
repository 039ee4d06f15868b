#include "support/PrivateXServer.h"
#include "support/RandrClient.h"

#include <QFile>
#include <QTest>

#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <csignal>

using namespace ambertide;

namespace {

constexpr int restoredWithin = 500;

/// The blue of "tint" and of "tint deeper", at every level.
constexpr std::uint16_t halfLevel = 32768;
constexpr std::uint16_t quarterLevel = 16384;

/// A process that is no child of the test.
class ForeignProcess
{
public:
    explicit ForeignProcess(pid_t process)
        : m_process(process), m_descriptor(static_cast<int>(syscall(SYS_pidfd_open, process, 0)))
    {
    }
    ~ForeignProcess() { close(m_descriptor); }
    ForeignProcess(const ForeignProcess &) = delete;
    ForeignProcess &operator=(const ForeignProcess &) = delete;

    pid_t identifier() const { return m_process; }
    bool endsWithin(int milliseconds) const
    {
        pollfd end{m_descriptor, POLLIN, 0};
        return m_descriptor >= 0 && poll(&end, 1, milliseconds) > 0;
    }

private:
    pid_t m_process;
    int m_descriptor;
};

/// A copy of the application, in a process group of its own.
class Copy
{
public:
    explicit Copy(const PrivateXServer &server)
    {
        m_process.setChildProcessModifier([] { setpgid(0, 0); });
        m_process.start(QStringLiteral(TINTING_PROGRAM), {QString::fromStdString(server.display())});
    }
    ~Copy()
    {
        m_process.kill();
        m_process.waitForFinished();
    }
    Copy(const Copy &) = delete;
    Copy &operator=(const Copy &) = delete;

    /// Returns when the copy has answered, or has ended.
    void command(const QByteArray &line)
    {
        m_process.write(line + '\n');
        while (m_process.state() != QProcess::NotRunning && !m_process.canReadLine())
            m_process.waitForReadyRead(100);
        m_process.readAll();
    }
    void signalGroup(int signal)
    {
        kill(-static_cast<pid_t>(m_process.processId()), signal);
        m_process.waitForFinished();
    }
    pid_t guardian() const
    {
        const auto process = QString::number(m_process.processId());
        QFile children(QStringLiteral("/proc/%1/task/%1/children").arg(process));
        return children.open(QIODevice::ReadOnly) ? children.readAll().trimmed().toInt() : 0;
    }

private:
    QProcess m_process;
};

} // namespace

class GuardianTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_client = std::make_unique<RandrClient>(m_server.display());
        m_display = m_client->crtcs().front();
    }

    void displaysAreGivenBackWhateverEndsTheApplication_data()
    {
        QTest::addColumn<QByteArray>("lastWord");
        QTest::addColumn<int>("signal");
        QTest::newRow("returns from main") << QByteArray("return") << 0;
        QTest::newRow("exit, with its objects left alive") << QByteArray("exit") << 0;
        QTest::newRow("_Exit") << QByteArray("_Exit") << 0;
        QTest::newRow("abort") << QByteArray("abort") << 0;
        QTest::newRow("killed") << QByteArray() << SIGKILL;
        QTest::newRow("interrupted with its group") << QByteArray() << SIGINT;
    }
    void displaysAreGivenBackWhateverEndsTheApplication()
    {
        QFETCH(const QByteArray, lastWord);
        QFETCH(const int, signal);
        Copy copy(m_server);
        for (const auto *step : {"tint", "restore", "tint"})
            copy.command(step);
        QTRY_COMPARE(m_client->ramp(m_display)[2][0], halfLevel);
        const ForeignProcess guardian(copy.guardian());
        for (const int harmless : {SIGTERM, SIGINT, SIGQUIT, SIGHUP, SIGTSTP, SIGPIPE})
            QCOMPARE(kill(guardian.identifier(), harmless), 0);

        if (signal != 0)
            copy.signalGroup(signal);
        else
            copy.command(lastWord);

        QVERIFY(guardian.endsWithin(restoredWithin));
        QVERIFY(m_client->showsIdentityEverywhere());
    }

    void displaysThatWereGivenBackAreLeftAlone()
    {
        Copy copy(m_server);
        copy.command("tint");
        copy.command("restore");
        const ForeignProcess guardian(copy.guardian());
        auto foreign = m_client->ramp(m_display);
        foreign[0].assign(foreign[0].size(), 0);
        m_client->setRamp(m_display, foreign);

        copy.signalGroup(SIGKILL);

        QVERIFY(guardian.endsWithin(restoredWithin));
        QCOMPARE(m_client->ramp(m_display), foreign);
    }

    void anotherCopyThatHasTakenOverKeepsItsTint()
    {
        Copy old(m_server);
        old.command("tint");
        const ForeignProcess oldGuardian(old.guardian());
        Copy young(m_server);
        young.command("tint deeper");
        const ForeignProcess youngGuardian(young.guardian());
        QTRY_COMPARE(m_client->ramp(m_display)[2][0], quarterLevel);

        old.signalGroup(SIGKILL);
        QVERIFY(oldGuardian.endsWithin(restoredWithin));
        QCOMPARE(m_client->ramp(m_display)[2][0], quarterLevel);

        young.signalGroup(SIGKILL);
        QVERIFY(youngGuardian.endsWithin(restoredWithin));
        QVERIFY(m_client->showsIdentityEverywhere());
    }

    void aGuardianThatDiesIsReplaced()
    {
        Copy copy(m_server);
        copy.command("tint");
        const ForeignProcess first(copy.guardian());
        kill(first.identifier(), SIGKILL);
        QVERIFY(first.endsWithin(5000));

        QTRY_VERIFY((copy.command("tint"), copy.guardian() != 0 && copy.guardian() != first.identifier()));
        const ForeignProcess second(copy.guardian());
        copy.signalGroup(SIGKILL);

        QVERIFY(second.endsWithin(restoredWithin));
        QVERIFY(m_client->showsIdentityEverywhere());
    }

private:
    const PrivateXServer m_server{PrivateXServer::Kind::framebuffer};
    std::unique_ptr<RandrClient> m_client;
    xcb_randr_crtc_t m_display = XCB_NONE;
};

QTEST_GUILESS_MAIN(GuardianTest)
#include "Guardian.moc"
