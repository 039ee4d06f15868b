#include "platform/linux/PkexecPrivilegedRunner.h"

#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>
#include <thread>

using namespace ambertide;
namespace fs = std::filesystem;
using Status = PrivilegedResult::Status;
using std::string;

/// A program named pkexec plays each outcome, from a folder that stands first on the path.
class TestPkexecPrivilegedRunner : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_path = qgetenv("PATH"); }
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_root = m_folder->path().toStdString();
        qputenv("PATH", m_folder->path().toUtf8() + ':' + m_path);
    }
    void cleanup() { qputenv("PATH", m_path); }

    void tellsOutcomesApart_data()
    {
        QTest::addColumn<string>("script");
        QTest::addColumn<string>("message");
        const string prefix = "echo 'Error executing command as another user: ";
        QTest::newRow("success, with noise") << string("echo noise >&2") << string();
        QTest::newRow("dismissed") << prefix + "Request dismissed' >&2; exit 126"
                                   << string("the request for administrator rights was cancelled");
        QTest::newRow("not authorised") << string("echo '(pkexec:1): a warning' >&2; ") + prefix +
                                               "Not authorized\n\nThis incident has been reported.' >&2; exit 127"
                                        << string("administrator rights were not granted");
        QTest::newRow("no agent")
            << prefix + "No authentication agent found.' >&2; exit 127"
            << string(
                   "nothing in this session can ask for an administrator's password (no polkit authentication agent is "
                   "running)");
        QTest::newRow("no polkit") << string("echo 'Error getting authority: Could not connect' >&2; exit 127")
                                   << string("the service that grants administrator rights (polkit) cannot be reached");
        QTest::newRow("the command's own 126")
            << string("echo 'sh: 1: x: Permission denied' >&2; exit 126") << string("sh: 1: x: Permission denied");
        QTest::newRow("the command's own 127") << string("echo 'sh: 1: Not authorized: not found' >&2; exit 127")
                                               << string("sh: 1: Not authorized: not found");
        QTest::newRow("a refusal's words with another status")
            << prefix + "Not authorized' >&2; exit 1"
            << string("Error executing command as another user: Not authorized");
        QTest::newRow("failure in silence") << string("exit 3") << string("the command ended with status 3");
        QTest::newRow("nothing but control characters")
            << string("printf '\\033\\007\\n' >&2; exit 127") << string("the command ended with status 127");
        QTest::newRow("several lines") << string("printf 'one\\n\\ttwo\\r\\n' >&2; exit 1") << string("one two");
        QTest::newRow("killed") << string("kill -KILL $$")
                                << string("the request for administrator rights was broken off (signal 9)");
    }
    void tellsOutcomesApart()
    {
        QFETCH(string, script);
        QFETCH(string, message);
        placePkexec(script);
        const auto result = PkexecPrivilegedRunner("/bin/sh").run("true");
        QCOMPARE(result.status, message.empty() ? Status::Succeeded : Status::Failed);
        QCOMPARE(result.message.value_or(string()), message);
    }

    void handsOverTheCommandAndAPlainEnvironment()
    {
        qputenv("SHELL", "/opt/strange/shell");
        placePkexec("{ printf '%s|' \"$@\" \"$SHELL\" \"$LC_ALL\"; cat; } > '" + (m_root / "seen").string() + "'");
        QCOMPARE(PkexecPrivilegedRunner("/bin/sh").run("ln -sf 'a b' \"$c\" é").status, Status::Succeeded);
        std::ifstream seen(m_root / "seen");
        QCOMPARE(string(std::istreambuf_iterator<char>(seen), {}),
                 string("--disable-internal-agent|/bin/sh|-c|ln -sf 'a b' \"$c\" é||C.UTF-8|"));
    }

    void rejectsWhatCannotBeHandedOver_data()
    {
        QTest::addColumn<string>("command");
        QTest::newRow("NUL") << string("a\0b", 3);
        QTest::newRow("not UTF-8") << string("ln '\xff'");
        QTest::newRow("too long for an argument") << string(128 * 1024, 'x');
    }
    void rejectsWhatCannotBeHandedOver()
    {
        QFETCH(string, command);
        placePkexec("touch '" + (m_root / "called").string() + "'");
        QCOMPARE(PkexecPrivilegedRunner("/bin/sh").run(command).status, Status::Rejected);
        QVERIFY(!fs::exists(m_root / "called"));
    }

    void saysThatItCannotBeStarted()
    {
        qputenv("PATH", m_folder->path().toUtf8());
        PkexecPrivilegedRunner runner("/bin/sh");
        QCOMPARE(runner.run("true").message.value(),
                 string("pkexec, which asks for administrator rights, is not installed"));
        std::ofstream(m_root / "pkexec") << "not executable";
        QCOMPARE(runner.run("true").message.value(),
                 string("pkexec, which asks for administrator rights, could not be started: Permission denied"));
    }

    void boundsEndlessOutput()
    {
        placePkexec("exec yes 'no end' >&2");
        const auto result = PkexecPrivilegedRunner("/bin/sh").run("true");
        QCOMPARE(result.status, Status::Failed);
        QVERIFY(result.message->size() < 8192);
    }

    void doesNotWaitForWhatTheCommandLeavesBehind()
    {
        const auto pidFile = m_root / "pid";
        placePkexec("sleep 1000 & echo $! > '" + pidFile.string() + "'; echo why >&2; exit 1");
        QCOMPARE(PkexecPrivilegedRunner("/bin/sh").run("true").message.value(), string("why"));
        pid_t sleeper = 0;
        std::ifstream(pidFile) >> sleeper;
        QCOMPARE(::kill(sleeper, SIGKILL), 0);
    }

    void takesAnOpenPromptBack()
    {
        // The stand-in holds the pipe open as long as it lives, which would be for ever.
        const auto pipe = m_root / "pipe";
        QCOMPARE(::mkfifo(pipe.c_str(), 0600), 0);
        placePkexec("exec 3> '" + pipe.string() + "'; echo started >&3; exec sleep 1000");
        PkexecPrivilegedRunner runner("/bin/sh");
        PrivilegedResult result;
        std::thread caller([&] {
            // As in every thread of the application but one.
            sigset_t signals;
            sigemptyset(&signals);
            sigaddset(&signals, SIGTERM);
            pthread_sigmask(SIG_BLOCK, &signals, nullptr);
            result = runner.run("true");
        });
        std::ifstream standIn(pipe);
        string word;
        standIn >> word;
        runner.cancel();
        caller.join();
        QCOMPARE(result.status, Status::Failed);
        QCOMPARE(result.message.value(), string("the request for administrator rights was taken back"));
        QVERIFY(!(standIn >> word)); // waits for the pipe's end
        QCOMPARE(runner.run("true").status, Status::Failed);
    }

private:
    void placePkexec(const string &script)
    {
        std::ofstream(m_root / "pkexec") << "#!/bin/sh\n" << script << '\n';
        fs::permissions(m_root / "pkexec", fs::perms::owner_all);
    }

    QByteArray m_path;
    std::unique_ptr<QTemporaryDir> m_folder;
    fs::path m_root;
};

QTEST_GUILESS_MAIN(TestPkexecPrivilegedRunner)
#include "PkexecPrivilegedRunner.moc"
