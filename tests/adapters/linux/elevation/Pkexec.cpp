#include "adapters/linux/elevation/PkexecPrivilegedRunner.h"
#include "adapters/linux/elevation/PkexecUpdateInstaller.h"

#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

#include <csignal>
#include <fstream>
#include <thread>

using namespace ambertide;
using enum PrivilegedResult::Status;
using Outcome = UpdateInstaller::Outcome;
using std::string;

namespace {

const string removal = "rm -f '/usr/local/bin/ambertide'";

}

/// A shell script plays each outcome of pkexec.
class Pkexec : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;
    PkexecPrivilegedRunner m_runner{"/usr/lib/a b/Contents/MacOS", path("pkexec")};
    PkexecUpdateInstaller m_installer{"/usr/lib/helper", path("pkexec")};

    string path(const char *name) const { return m_folder.filePath(QString::fromLatin1(name)).toStdString(); }
    void play(const string &script) const
    {
        ::unlink(path("pkexec").c_str());
        if (script.empty())
            return;
        std::ofstream(path("pkexec")) << "#!/bin/sh\n" << script << '\n';
        ::chmod(path("pkexec").c_str(), 0700);
    }
    string messageOf(const string &script)
    {
        play(script);
        const auto result = m_runner.run(removal);
        return result.status == (result.message ? Failed : Succeeded) ? result.message.value_or(QString()).toStdString()
                                                                      : "another status";
    }
    std::optional<UpdateInstaller::Result> install()
    {
        std::ofstream(path("package")) << "bytes";
        std::optional<UpdateInstaller::Result> told;
        m_installer.install({path("package"), "QUJD", "1.2"}, [&told](const auto &result) { told = result; });
        return QTest::qWaitFor([&told] { return told.has_value(); }, 20'000) ? told : std::nullopt;
    }

private Q_SLOTS:
    void init()
    {
        qputenv("SHELL", "/opt/strange/shell");
        // As in every thread of the application but one.
        sigset_t signals;
        sigemptyset(&signals);
        sigaddset(&signals, SIGTERM);
        sigaddset(&signals, SIGINT);
        pthread_sigmask(SIG_BLOCK, &signals, nullptr);
        std::signal(SIGPIPE, SIG_IGN);
        std::signal(SIGCHLD, SIG_IGN); // as some starters leave it
    }

    void outcomesAreToldApart()
    {
        const string refuse = "echo '(pkexec:1): a warning\nError executing command as another user: '";
        const struct
        {
            string script;
            string message; // in Settings
            Outcome outcome;
            string line = {};
        } rows[] = {
            {"", "pkexec, which asks for administrator rights, is not installed", Outcome::NotAuthorised},
            {"echo noise >&2", "", Outcome::Installed, "noise"},
            {refuse + "'Request dismissed' >&2; exit 126", "the request for administrator rights was cancelled",
             Outcome::Dismissed},
            {refuse + "'Not authorized' >&2; exit 127", "administrator rights were not granted",
             Outcome::NotAuthorised},
            // These are not pkexec's words.
            {"echo 'sh: 1: Error executing command as another user: Not authorized' >&2; exit 127",
             "the command ended with status 127", Outcome::NotAuthorised},
            {"exit 4", "/usr/local/bin/ambertide is a folder", Outcome::Failed},
            {"printf 'disk\\033\\n\\tfull\\r\\n' >&2; exit 17", "the command ended with status 17", Outcome::NoRoom,
             "disk full"},
            {"sleep 20 & exit 9", "the command ended with status 9", Outcome::Failed}, // a child is left behind
            {"kill -9 $$", "the command was broken off (signal 9)", Outcome::Failed},
            {"printf '%50000s' end | tr ' ' y >&2; exit 9", "the command ended with status 9", Outcome::Failed,
             string(4093, 'y') + "end"},
            {"while read -r name value; do [ $name != SigBlk: ] || echo $value; "
             "[ $name != SigIgn: ] || echo $((0x$value & 0x11000)); done < /proc/$$/status >&2; exit 9",
             "the command ended with status 9", Outcome::Failed, "0000000000000000 0"},
        };
        for (const auto &[script, message, outcome, line] : rows) {
            QElapsedTimer timer;
            timer.start();
            QCOMPARE(messageOf(script), message);
            const auto installed = install();
            QVERIFY2(installed && installed->outcome == outcome, script.c_str());
            if (!line.empty())
                QCOMPARE(installed->message, line);
            QVERIFY(timer.elapsed() < 10'000); // however long a child that was left behind holds the output
        }
    }

    void onlyTheTwoCommandsAreRunAndByNoShell()
    {
        const string show = "{ printf '%s|' \"$@\" \"$SHELL\" \"$LC_ALL\"; cat; } >'" + path("shown") + "'";
        const auto shown = [this] {
            std::ifstream file(path("shown"));
            return string{std::istreambuf_iterator<char>(file), {}};
        };
        const string begin =
            "mkdir -p /usr/local/bin && ln -sf '/usr/lib/a b/Contents/MacOS/AmbertideCLI' '/usr/local/bin/";
        play(show);
        for (const auto &command : {begin + "ambertide'; id", begin + "ambertides'", removal + " ", string("id")})
            QCOMPARE(m_runner.run(command).status, Rejected);
        QCOMPARE(shown(), "");
        const string program = "--disable-internal-agent|/usr/lib/a b/Contents/MacOS/AmbertideToolLink|";
        QCOMPARE(m_runner.run(begin + "ambertide'").status, Succeeded);
        QCOMPARE(shown(), program + "install||C.UTF-8|");
        QCOMPARE(m_runner.run(removal).status, Succeeded);
        QCOMPARE(shown(), program + "uninstall||C.UTF-8|");
        install();
        QCOMPARE(shown(), "--disable-internal-agent|/usr/lib/helper|QUJD|1.2||C.UTF-8|bytes");
    }

    void anOpenPromptIsTakenBack()
    {
        // The stand-in holds the pipe open as long as it lives, which would be for ever.
        QCOMPARE(::mkfifo(path("pipe").c_str(), 0600), 0);
        QString message;
        PkexecPrivilegedRunner runner("/nowhere", path("pkexec"));
        play("exec 3> '" + path("pipe") + "'; echo started >&3; exec sleep 1000");
        std::thread caller([&] { message = runner.run(removal).message.value(); });
        std::ifstream standIn(path("pipe"));
        string word;
        standIn >> word;
        runner.cancel();
        caller.join();
        QCOMPARE(message, QStringLiteral("the request for administrator rights was taken back"));
        QVERIFY(!(standIn >> word)); // waits for the pipe's end
        QCOMPARE(runner.run(removal).status, Failed);
    }
};

QTEST_GUILESS_MAIN(Pkexec)
#include "Pkexec.moc"
