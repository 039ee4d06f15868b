#include "support/PrivateBus.h"

#include <QDir>
#include <QFile>

#include <sys/prctl.h>

#include <csignal>
#include <fstream>

namespace ambertide {

namespace {

constexpr char configuration[] = R"(<busconfig>
  <type>session</type>
  <listen>unix:path=%1/bus</listen>
  <servicedir>%1/services</servicedir>
  <policy context="default"><allow send_destination="*"/><allow receive_sender="*"/><allow own="*"/></policy>
</busconfig>
)";

} // namespace

PrivateBus::PrivateBus(const char *addressVariable)
{
    const auto folder = m_folder.path();
    std::ofstream((folder + QStringLiteral("/bus.conf")).toStdString())
        << QString::fromLatin1(configuration).arg(folder).toStdString();
    m_daemon.setProgram(QStringLiteral("dbus-daemon"));
    m_daemon.setArguments({QStringLiteral("--config-file=%1/bus.conf").arg(folder), QStringLiteral("--nofork"),
                           QStringLiteral("--print-address=1")});
    m_daemon.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGKILL); });
    qputenv(addressVariable, "unix:path=" + folder.toUtf8() + "/bus");
    start();
}

PrivateBus::~PrivateBus() { stop(); }

void PrivateBus::start()
{
    m_daemon.start();
    if (!m_daemon.waitForReadyRead()) // the written once it listens
        qFatal("The private bus does not start: %s", m_daemon.readAllStandardError().constData());
}

void PrivateBus::stop()
{
    m_daemon.kill();
    m_daemon.waitForFinished();
    QFile::remove(m_folder.filePath(QStringLiteral("bus")));
}

void PrivateBus::addService(const char *name, const char *program)
{
    QDir(m_folder.path()).mkpath(QStringLiteral("services"));
    QFile file(m_folder.filePath(QStringLiteral("services/%1.service").arg(QLatin1String(name))));
    QByteArray command = "/usr/bin/env";
    for (const char *variable : {"DISPLAY", "XDG_CONFIG_HOME", "XDG_RUNTIME_DIR", "DBUS_SYSTEM_BUS_ADDRESS"})
        command += QByteArray(" ") + variable + '=' + qgetenv(variable);
    const QByteArray content = QByteArray("[D-BUS Service]\nName=") + name + "\nExec=" + command + ' ' + program + '\n';
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("The private bus gets no services");
}

void PrivateBus::freeze() { ::kill(static_cast<pid_t>(m_daemon.processId()), SIGSTOP); }

void PrivateBus::thaw() { ::kill(static_cast<pid_t>(m_daemon.processId()), SIGCONT); }

} // namespace ambertide
