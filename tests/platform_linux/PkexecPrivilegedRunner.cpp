#include "platform/linux/PkexecPrivilegedRunner.h"

#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <thread>

using namespace ambertide;
namespace fs = std::filesystem;
using enum PrivilegedResult::Status;
using std::string;

/// A program named pkexec plays each outcome, from a folder that stands first on the path.
class TestPkexecPrivilegedRunner : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder.emplace();
        m_root = m_folder->path().toStdString();
        qputenv("PATH", m_folder->path().toUtf8() + ":/usr/bin:/bin");
    }

    void tellsOutcomesApart_data()
    {
        QTest::addColumn<string>("script");
        QTest::addColumn<string>("message");
        const auto row = [](const char *name, const string &script, const string &message) {
            QTest::newRow(name) << script << message;
        };
        const string refuse = "echo '(pkexec:1): a warning\nError executing command as another user: '";
        row("success, with noise", "echo noise >&2", "");
        row("dismissed", refuse + "'Request dismissed' >&2; exit 126",
            "the request for administrator rights was cancelled");
        row("not authorised", refuse + "'Not authorized' >&2; exit 127", "administrator rights were not granted");
        row("no agent", refuse + "'No authentication agent found.' >&2; exit 127",
            "nothing in this session can ask for an administrator's password (no polkit authentication agent is "
            "running)");
        row("no polkit", "echo 'Error getting authority: Could not connect' >&2; exit 127",
            "the service that grants administrator rights (polkit) cannot be reached");
        row("own 126", "echo 'sh: 1: x: Permission denied' >&2; exit 126", "sh: 1: x: Permission denied");
        row("own 127", "echo 'sh: 1: Not authorized: not found' >&2; exit 127", "sh: 1: Not authorized: not found");
        row("failure in silence", "printf '\\033\\007\\n' >&2; exit 127", "the command ended with status 127");
        row("several lines", "printf 'one\\n\\ttwo\\r\\n' >&2; exit 1", "one two");
        row("killed", "kill -9 $$", "the request for administrator rights was broken off (signal 9)");
        row("a child left behind, holding the output", "sleep 20 & echo why >&2; exit 1", "why");
    }
    void tellsOutcomesApart()
    {
        QFETCH(string, script);
        QFETCH(string, message);
        placePkexec(script);
        QElapsedTimer timer;
        timer.start();
        const auto result = m_runner.run("true");
        QCOMPARE(result.message.value_or(""), message);
        QCOMPARE(result.status, message.empty() ? Succeeded : Failed);
        QVERIFY(timer.elapsed() < 10'000);
    }

    void handsOverTheCommandAndAPlainEnvironment()
    {
        qputenv("SHELL", "/opt/strange/shell");
        placePkexec("{ printf '%s|' \"$@\" \"$SHELL\" \"$LC_ALL\"; cat; } >&2; exit 1");
        QCOMPARE(m_runner.run("ln -sf 'a b' \"$c\" é").message.value(),
                 "--disable-internal-agent|/bin/sh|-c|ln -sf 'a b' \"$c\" é||C.UTF-8|");
    }

    void saysThatItCannotBeStarted()
    {
        for (const string &command : {string("a\0b", 3), string("ln '\xff'"), string(128 * 1024, 'x')})
            QCOMPARE(m_runner.run(command).status, Rejected);
        qputenv("PATH", m_folder->path().toUtf8());
        QCOMPARE(m_runner.run("true").message.value(), "pkexec, which asks for administrator rights, is not installed");
        std::ofstream(m_root / "pkexec") << "not executable";
        QVERIFY(m_runner.run("true").message->ends_with("could not be started: Permission denied"));
    }

    void boundsEndlessOutput()
    {
        placePkexec("exec yes 'no end' >&2");
        QVERIFY(m_runner.run("true").message->size() < 8192);
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
        QCOMPARE(result.message.value(), "the request for administrator rights was taken back");
        QVERIFY(!(standIn >> word)); // waits for the pipe's end
        QCOMPARE(runner.run("true").status, Failed);
    }

private:
    void placePkexec(const string &script)
    {
        std::ofstream(m_root / "pkexec") << "#!/bin/sh\n" << script << '\n';
        fs::permissions(m_root / "pkexec", fs::perms::owner_all);
    }

    std::optional<QTemporaryDir> m_folder;
    fs::path m_root;
    PkexecPrivilegedRunner m_runner{"/bin/sh"};
};

QTEST_GUILESS_MAIN(TestPkexecPrivilegedRunner)
#include "PkexecPrivilegedRunner.moc"
