#include "adapters/linux/elevation/PkexecPrivilegedRunner.h"

#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <thread>

using namespace ambertide;
using enum PrivilegedResult::Status;
using std::string;

/// A program named pkexec plays each outcome, from a folder that stands first on the path.
class TestPkexecPrivilegedRunner : public QObject
{
    Q_OBJECT

    const QTemporaryDir m_folder;
    const string m_pkexec = m_folder.filePath(QStringLiteral("pkexec")).toStdString();
    PkexecPrivilegedRunner m_runner{"/bin/sh"};

    string messageOf(const string &script)
    {
        std::ofstream(m_pkexec) << "#!/bin/sh\n" << script << '\n';
        std::filesystem::permissions(m_pkexec, std::filesystem::perms::owner_all);
        const auto result = m_runner.run("ln -sf 'a b' \"$c\" é");
        return result.status == (result.message ? Failed : Succeeded) ? result.message.value_or("") : "another status";
    }

private Q_SLOTS:
    void init() { qputenv("PATH", m_folder.path().toUtf8() + ":/usr/bin:/bin"); }

    void tellsOutcomesApart()
    {
        const string refuse = "echo '(pkexec:1): a warning\nError executing command as another user: '";
        const std::pair<string, string> cases[] = {
            {"echo noise >&2", ""},
            {refuse + "'Request dismissed' >&2; exit 126", "the request for administrator rights was cancelled"},
            {refuse + "'Not authorized' >&2; exit 127", "administrator rights were not granted"},
            {"echo 'sh: 1: Error executing command as another user: Not authorized' >&2; exit 127",
             "sh: 1: Error executing command as another user: Not authorized"},
            {"printf '\\033\\007\\n' >&2; exit 127", "the command ended with status 127"},
            {"sleep 20 & printf 'one\\n\\ttwo\\r\\n' >&2; exit 1", "one two"},
            {"kill -9 $$", "the request for administrator rights was broken off (signal 9)"},
        };
        QElapsedTimer timer;
        timer.start();
        for (const auto &[script, message] : cases)
            QCOMPARE(messageOf(script), message);
        QVERIFY(timer.elapsed() < 10'000); // however long a child that was left behind holds the output
    }

    void handsOverTheCommandAndBoundsItsOutput()
    {
        qputenv("SHELL", "/opt/strange/shell");
        QCOMPARE(messageOf("{ printf '%s|' \"$@\" \"$SHELL\" \"$LC_ALL\"; cat; } >&2; exit 1"),
                 "--disable-internal-agent|/bin/sh|-c|ln -sf 'a b' \"$c\" é||C.UTF-8|");
        QVERIFY(messageOf("exec yes 'no end' >&2").size() < 8192);
    }

    void saysThatItCannotBeStarted()
    {
        for (const string &command : {string("a\0b", 3), string("ln '\xff'"), string(128 * 1024, 'x')})
            QCOMPARE(m_runner.run(command).status, Rejected);
        qputenv("PATH", m_folder.path().toUtf8());
        std::filesystem::remove(m_pkexec);
        QCOMPARE(m_runner.run("true").message.value(), "pkexec, which asks for administrator rights, is not installed");
        std::ofstream(m_pkexec) << "not executable";
        QVERIFY(m_runner.run("true").message->ends_with("could not be started: Permission denied"));
    }

    void takesAnOpenPromptBack()
    {
        // The stand-in holds the pipe open as long as it lives, which would be for ever.
        const string pipe = m_folder.filePath(QStringLiteral("pipe")).toStdString();
        QCOMPARE(::mkfifo(pipe.c_str(), 0600), 0);
        string message;
        std::thread caller([&] {
            // As in every thread of the application but one.
            sigset_t signals;
            sigemptyset(&signals);
            sigaddset(&signals, SIGTERM);
            pthread_sigmask(SIG_BLOCK, &signals, nullptr);
            message = messageOf("exec 3> '" + pipe + "'; echo started >&3; exec sleep 1000");
        });
        std::ifstream standIn(pipe);
        string word;
        standIn >> word;
        m_runner.cancel();
        caller.join();
        QCOMPARE(message, "the request for administrator rights was taken back");
        QVERIFY(!(standIn >> word)); // waits for the pipe's end
        QCOMPARE(m_runner.run("true").status, Failed);
    }
};

QTEST_GUILESS_MAIN(TestPkexecPrivilegedRunner)
#include "PkexecPrivilegedRunner.moc"
