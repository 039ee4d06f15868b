#pragma once

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <sys/prctl.h>

#include <csignal>
#include <fstream>

namespace ambertide {

/// A message bus of the test's own, at the address that the given environment variable has while this lives. It ends
/// with the test, crash included.
class PrivateBus
{
public:
    explicit PrivateBus(const char *addressVariable = "DBUS_SESSION_BUS_ADDRESS")
    {
        constexpr char configuration[] = R"(<busconfig>
  <type>session</type>
  <listen>unix:path=%1/bus</listen>
  <servicedir>%1/services</servicedir>
  <policy context="default"><allow send_destination="*"/><allow receive_sender="*"/><allow own="*"/></policy>
</busconfig>
)";
        write(QStringLiteral("bus.conf"), QString::fromLatin1(configuration).arg(m_folder.path()).toUtf8());
        m_daemon.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGKILL); });
        qputenv(addressVariable, "unix:path=" + m_folder.path().toUtf8() + "/bus");
        start();
    }
    ~PrivateBus() { stop(); }

    /// Again at the same address.
    void start()
    {
        m_daemon.startCommand(
            QStringLiteral("dbus-daemon --config-file=%1/bus.conf --nofork --print-address=1").arg(m_folder.path()));
        if (!m_daemon.waitForReadyRead()) // the address, written once it listens
            qFatal("The private bus does not start: %s", m_daemon.readAllStandardError().constData());
    }
    void stop()
    {
        m_daemon.kill();
        m_daemon.waitForFinished();
        QFile::remove(m_folder.filePath(QStringLiteral("bus")));
    }
    /// Has the bus start this program, with the environment that the test has now, for calls to a name without owner.
    void addService(const char *name, const char *program) const
    {
        QByteArray command = "/usr/bin/env";
        for (const char *variable : {"DISPLAY", "XDG_CONFIG_HOME", "XDG_RUNTIME_DIR", "DBUS_SYSTEM_BUS_ADDRESS"})
            command += QByteArray(" ") + variable + '=' + qgetenv(variable);
        QDir(m_folder.path()).mkpath(QStringLiteral("services"));
        write(QStringLiteral("services/%1.service").arg(QLatin1String(name)),
              QByteArray("[D-BUS Service]\nName=") + name + "\nExec=" + command + ' ' + program + '\n');
    }
    /// From then on it takes connections and messages, but answers nothing.
    void freeze() { ::kill(static_cast<pid_t>(m_daemon.processId()), SIGSTOP); }
    void thaw() { ::kill(static_cast<pid_t>(m_daemon.processId()), SIGCONT); }

private:
    void write(const QString &name, const QByteArray &content) const
    {
        std::ofstream(m_folder.filePath(name).toStdString()) << content.constData();
    }

    QTemporaryDir m_folder;
    QProcess m_daemon;
};

} // namespace ambertide
