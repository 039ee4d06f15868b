#include "adapters/linux/displays/mutter/MutterBackend.h"

#include "FakeMutter.h"
#include "adapters/linux/displays/shared/BackendDisplayServices.h"
#include "support/CapturedConsole.h"
#include "support/ChildProcess.h"
#include "support/PrivateBus.h"
#include "support/Tint.h"

#include <QTest>

#include <sys/prctl.h>
#include <sys/wait.h>

#include <csignal>
#include <iostream>

using namespace ambertide;
using Habit = FakeMutter::Habit;

namespace {

bool isTinted(const FakeMutter &mutter, float blue, std::size_t crtcs = 2)
{
    for (std::size_t crtc = 0; crtc < crtcs; ++crtc) {
        if (!isTint(mutter.shown(crtc), blue))
            return false;
    }
    return true;
}

BackendDisplayServices makeServices()
{
    return BackendDisplayServices(
        [] { return std::make_unique<MutterBackend>(AMBERTIDE_BUNDLE "/Contents/MacOS/AmbertideGuardian"); });
}

void setTint(DisplayServices &services, float blue)
{
    services.setTransferTables(services.activeDisplays(), tint(blue));
}

/// A copy of the application: shows each level of blue that it reads, and at 1 restores the displays.
int runCopy()
{
    auto services = makeServices();
    services.restoreSystemColours(); // and it has connected
    for (float level = 0; std::cin >> level; std::cout << level << std::endl) {
        if (level < 1)
            setTint(services, level);
        else
            services.restoreSystemColours();
    }
    return 0;
}

class Copy : public QProcess
{
public:
    Copy() { start(QCoreApplication::applicationFilePath(), {QStringLiteral("tint")}); }
    void show(const QByteArray &level)
    {
        write(level + '\n');
        while (state() != NotRunning && !canReadLine())
            waitForReadyRead(100);
        readAll();
    }
    /// False when its guardian stays for long.
    bool end()
    {
        const auto guardian = childOf(static_cast<pid_t>(processId()), "AmbertideGuardian");
        kill();
        waitForFinished();
        return QTest::qWaitFor([guardian] { return waitpid(guardian, nullptr, WNOHANG) == guardian; });
    }
};

} // namespace

class MutterBackendTest : public QObject
{
    Q_OBJECT

    PrivateBus m_session;
    PrivateBus m_system{"DBUS_SYSTEM_BUS_ADDRESS"};
    CapturedConsole m_console;

private Q_SLOTS:
    void init() { m_console.lines.clear(); }

    void aSessionWithoutMutterIsRefused()
    {
        QVERIFY(!MutterBackend::refusal().empty());
        const FakeMutter mutter({256});
        QCOMPARE(MutterBackend::refusal(), std::string());
    }

    void displaysAreTintedInTheirSizesKeptUpAndRestored()
    {
        FakeMutter mutter({256, 1024, 256});
        auto services = makeServices();
        QTRY_COMPARE(services.activeDisplays().size(), 2U); // the third one shows no picture
        for (int pass = 0; pass < 20; ++pass) {
            setTint(services, 0.5);
            QTRY_VERIFY(isTinted(mutter, 0.5));
        }
        QCOMPARE(mutter.written.load(), 2);
        for (int i = 0; i < 13; ++i) {
            mutter.writeOver(1); // and no signal tells of it
            QTRY_VERIFY((setTint(services, 0.5), isTinted(mutter, 0.5)));
            QCOMPARE(mutter.written.load(), 3 + i);
        }
        QCOMPARE(m_console.lines.size(), 1U);

        mutter.makeSerialStale();
        setTint(services, 0.25);
        QTRY_VERIFY(isTinted(mutter, 0.25));
        services.restoreSystemColours();
        QVERIFY(isTinted(mutter, 1, 3));
        QCOMPARE(mutter.malformed.load(), 0);
    }

    void whatMutterWritesOverATintIsRepairedAtOnceAndWithoutATintLeftAlone()
    {
        FakeMutter mutter({256, 256});
        auto services = makeServices();
        setTint(services, 0.5);
        QTRY_VERIFY(isTinted(mutter, 0.5));
        // Before the displays change, after which the tables are looked at for a while in any case.
        for (const std::uint32_t temperature : {4000U, 3900U, 6500U, 4000U}) {
            mutter.setNightLight(temperature != 6500, temperature);
            QTRY_VERIFY(isTinted(mutter, 0.5));
        }
        mutter.changeMonitors();
        QTRY_VERIFY(isTinted(mutter, 0.5));
        QCOMPARE(m_console.lines.size(), 2U); // each time that Night Light has come on

        // Without colord mutter shows no Night Light.
        services.restoreSystemColours();
        QVERIFY(isTinted(mutter, 1));
        const int written = mutter.written;
        mutter.setNightLight(true, 3000);
        mutter.changeMonitors();
        mutter.makeSerialStale();
        services.restoreSystemColours();
        QTRY_COMPARE(mutter.written.load(), written + 2);
        mutter.habit = Habit::noProperties; // nothing is put there that might not be mutter's own
        services.restoreSystemColours();
        services.restoreSystemColours(); // by now the first of them is over
        QCOMPARE(mutter.written.load(), written + 2);
        QCOMPARE(mutter.malformed.load(), 0);
    }

    void aMutterThatMisbehavesIsOutlivedAndAskedNoFaster()
    {
        for (const auto habit : {Habit::silent, Habit::refusing, Habit::wrongTypes, Habit::thousandsOfCrtcs,
                                 Habit::hugeTables, Habit::noTables}) {
            FakeMutter mutter({256, 256});
            auto services = makeServices();
            QTRY_COMPARE(services.activeDisplays().size(), 2U);
            mutter.habit = habit;
            mutter.changeMonitors();
            const int before = mutter.calls;
            constexpr int writes = 300;
            for (int i = 0; i < writes; ++i)
                services.setTransferTables(std::array<DisplayIdentifier, 3>{0, 1, 999},
                                           tint(static_cast<float>(i) / 1000));
            services.restoreSystemColours();
            mutter.habit = Habit::regular;
            // A write has at most two refused attempts, of three calls each.
            QTest::qWait(50);
            QVERIFY2(mutter.calls - before <= 6 * writes, qPrintable(QString::number(mutter.calls - before)));
            mutter.changeMonitors();
            QTRY_VERIFY_WITH_TIMEOUT((setTint(services, 0.5), isTinted(mutter, 0.5)), 30000);
            QCOMPARE(mutter.malformed.load(), 0);
        }
    }

    void onlyTheNewestTintIsKeptForASlowMutter()
    {
        FakeMutter mutter({256});
        auto services = makeServices();
        setTint(services, 0.5);
        QTRY_VERIFY(isTinted(mutter, 0.5, 1));
        mutter.habit = Habit::silent;
        for (int i = 1; i <= 100; ++i)
            setTint(services, static_cast<float>(i) / 200);
        const int before = mutter.calls;
        setTint(services, 0.25);
        mutter.habit = Habit::regular;
        QTRY_VERIFY(isTinted(mutter, 0.25, 1));
        QVERIFY(mutter.calls - before <= 4);
    }

    void aBusThatComesBackIsUsedAgain()
    {
        std::optional<FakeMutter> mutter;
        mutter.emplace(std::vector<std::size_t>{256});
        auto services = makeServices();
        setTint(services, 0.5);
        QTRY_VERIFY(isTinted(*mutter, 0.5, 1));
        m_session.stop();
        mutter.reset();
        services.restoreSystemColours();
        m_session.start();
        mutter.emplace(std::vector<std::size_t>{256});
        QTRY_VERIFY_WITH_TIMEOUT((setTint(services, 0.25), isTinted(*mutter, 0.25, 1)), 10'000);
    }

    void displaysAreGivenBackWhateverEndsTheApplicationUnlessAnotherCopyTints()
    {
        FakeMutter mutter({256, 256});
        for (const int signal : {0, SIGKILL, SIGTERM}) {
            Copy copy;
            QTRY_VERIFY((copy.show("0.5"), isTinted(mutter, 0.5)));
            if (signal == 0)
                copy.closeWriteChannel(); // and it returns from main
            else
                kill(static_cast<pid_t>(copy.processId()), signal);
            copy.waitForFinished();
            QTRY_VERIFY(isTinted(mutter, 1));
        }
        Copy old;
        QTRY_VERIFY((old.show("0.5"), isTinted(mutter, 0.5)));
        Copy young;
        QTRY_VERIFY((young.show("0.25"), isTinted(mutter, 0.25)));
        QVERIFY(old.end());
        QVERIFY(isTinted(mutter, 0.25));
        young.show("1");
        QTRY_VERIFY(isTinted(mutter, 1));
        young.show("1"); // the first of them is over by now
        mutter.writeOver(0);
        QVERIFY(young.end());
        QCOMPARE(mutter.shown(0)[5], 77); // what was given back is left alone
        QCOMPARE(mutter.malformed.load(), 0);
    }
};

int main(int argc, char *argv[])
{
    if (argc == 2 && qstrcmp(argv[1], "tint") == 0)
        return runCopy();
    const QCoreApplication application(argc, argv);
    prctl(PR_SET_CHILD_SUBREAPER, 1); // orphaned guardians become children of this test
    MutterBackendTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "MutterBackend.moc"
