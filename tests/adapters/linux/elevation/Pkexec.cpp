#include "adapters/linux/elevation/PkexecPrivilegedRunner.h"
#include "adapters/linux/elevation/PkexecUpdateInstaller.h"

#include <QFile>
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

/// A shell script named pkexec plays each outcome, from a folder that stands first on the path.
class Pkexec : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;
    PkexecPrivilegedRunner m_runner{"/bin/sh"};
    PkexecUpdateInstaller m_installer{"/usr/lib/helper"};

    string path(const char *name) const { return m_folder.filePath(QString::fromLatin1(name)).toStdString(); }
    void play(const string &script) const
    {
        std::ofstream(path("pkexec")) << "#!/bin/sh\n" << script << '\n';
        ::chmod(path("pkexec").c_str(), 0700);
    }
    string messageOf(const string &script)
    {
        play(script);
        const auto result = m_runner.run("ln -sf 'a b' \"$c\" é");
        return result.status == (result.message ? Failed : Succeeded) ? result.message.value_or("") : "another status";
    }
    std::optional<UpdateInstaller::Result> install()
    {
        std::ofstream(path("package")) << "bytes";
        std::optional<UpdateInstaller::Result> told;
        m_installer.install(path("package"), "QUJD", [&told](const auto &result) { told = result; });
        return QTest::qWaitFor([&told] { return told.has_value(); }, 20'000) ? told : std::nullopt;
    }

private Q_SLOTS:
    void init()
    {
        qputenv("PATH", m_folder.path().toUtf8() + ":/usr/bin:/bin");
        qputenv("SHELL", "/opt/strange/shell");
        // As in every thread of the application but one.
        sigset_t signals;
        sigemptyset(&signals);
        sigaddset(&signals, SIGTERM);
        sigaddset(&signals, SIGINT);
        pthread_sigmask(SIG_BLOCK, &signals, nullptr);
        std::signal(SIGPIPE, SIG_IGN);
    }

    void outcomesAreToldApart_data()
    {
        QTest::addColumn<string>("script");
        QTest::addColumn<string>("message");
        QTest::addColumn<Outcome>("outcome");
        const auto row = [](const char *name, const string &script, const string &message, Outcome outcome) {
            QTest::newRow(name) << script << message << outcome;
        };
        const string refuse = "echo '(pkexec:1): a warning\nError executing command as another user: '";
        row("done", "echo noise >&2", "", Outcome::Installed);
        row("dismissed", refuse + "'Request dismissed' >&2; exit 126",
            "the request for administrator rights was cancelled", Outcome::Dismissed);
        row("refused", refuse + "'Not authorized' >&2; exit 127", "administrator rights were not granted",
            Outcome::NotAuthorised);
        row("not pkexec's words", "echo 'sh: 1: Error executing command as another user: Not authorized' >&2; exit 127",
            "sh: 1: Error executing command as another user: Not authorized", Outcome::NotAuthorised);
        row("no words", "printf '\\033\\007\\n' >&2; exit 3", "the command ended with status 3", Outcome::Failed);
        row("a child left behind", "sleep 20 & printf 'one\\n\\ttwo\\r\\n' >&2; exit 1", "one two", Outcome::Failed);
        row("broken off", "kill -9 $$", "the command was broken off (signal 9)", Outcome::Failed);
        row("long", "printf '%50000s' '' | tr ' ' y >&2; exit 1", string(4096, 'y'), Outcome::Failed);
        row("signals",
            "while read -r name value; do [ $name != SigBlk: ] || echo $value; "
            "[ $name != SigIgn: ] || echo $((0x$value & 0x1000)); done < /proc/$$/status >&2; exit 1", // SIGPIPE's bit
            "0000000000000000 0", Outcome::Failed);
    }
    void outcomesAreToldApart()
    {
        QFETCH(string, script);
        QFETCH(string, message);
        QFETCH(Outcome, outcome);
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(messageOf(script), message);
        const auto installed = install();
        QVERIFY(installed && installed->outcome == outcome);
        QCOMPARE(installed->message, outcome == Outcome::Dismissed ? string() : message);
        QVERIFY(timer.elapsed() < 10'000); // however long a child that was left behind holds the output
    }

    void theCommandArrivesAsItIs()
    {
        const string show = "{ printf '%s|' \"$@\" \"$SHELL\" \"$LC_ALL\"; cat; } >&2; exit 1";
        QCOMPARE(messageOf(show), "--disable-internal-agent|/bin/sh|-c|ln -sf 'a b' \"$c\" é||C.UTF-8|");
        QCOMPARE(install()->message, "--disable-internal-agent|/usr/lib/helper|QUJD||C.UTF-8|bytes");
    }

    void whatCannotBeStartedIsTold()
    {
        for (const string &command : {string("a\0b", 3), string("ln '\xff'"), string(128 * 1024, 'x')})
            QCOMPARE(m_runner.run(command).status, Rejected);
        qputenv("PATH", m_folder.path().toUtf8());
        ::unlink(path("pkexec").c_str());
        QCOMPARE(m_runner.run("true").message.value(), "pkexec, which asks for administrator rights, is not installed");
        QVERIFY(install()->outcome == Outcome::NotAuthorised);
        std::ofstream(path("pkexec")) << "not executable";
        QVERIFY(m_runner.run("true").message->ends_with("could not be started: Permission denied"));
    }

    void anOpenPromptIsTakenBack()
    {
        // The stand-in holds the pipe open as long as it lives, which would be for ever.
        QCOMPARE(::mkfifo(path("pipe").c_str(), 0600), 0);
        string message;
        PkexecPrivilegedRunner runner("/bin/sh");
        play("exec 3> '" + path("pipe") + "'; echo started >&3; exec sleep 1000");
        std::thread caller([&] { message = runner.run("true").message.value(); });
        std::ifstream standIn(path("pipe"));
        string word;
        standIn >> word;
        runner.cancel();
        caller.join();
        QCOMPARE(message, "the request for administrator rights was taken back");
        QVERIFY(!(standIn >> word)); // waits for the pipe's end
        QCOMPARE(runner.run("true").status, Failed);
    }

    void anInstallationOutlivesTheInstaller()
    {
        QCOMPARE(::mkfifo(path("gate").c_str(), 0600), 0);
        play("read line < '" + path("gate") + "'; touch '" + path("finished") + "'");
        std::optional<PkexecUpdateInstaller> installer("/usr/lib/helper");
        installer->install(path("package"), "QUJD", [](const auto &) { qFatal("told to nobody"); });
        installer.reset();
        std::ofstream(path("gate")) << "go\n"; // once it reads
        QTRY_VERIFY(QFile::exists(QString::fromStdString(path("finished"))));
    }
};

QTEST_GUILESS_MAIN(Pkexec)
#include "Pkexec.moc"
