#include "support/PrivateBus.h"

#include <QFile>

#include <sys/prctl.h>

#include <csignal>

namespace ambertide {

namespace {

constexpr char configuration[] = R"(<busconfig>
  <type>session</type>
  <listen>unix:path=%1</listen>
  <policy context="default"><allow send_destination="*"/><allow receive_sender="*"/><allow own="*"/></policy>
</busconfig>
)";

} // namespace

PrivateBus::PrivateBus(const char *addressVariable)

{
    const QString socket = m_folder.filePath(QStringLiteral("bus"));
    QFile file(m_folder.filePath(QStringLiteral("bus.conf")));
    if (!file.open(QIODevice::WriteOnly) || file.write(QString::fromLatin1(configuration).arg(socket).toUtf8()) < 0)
        qFatal("The private bus cannot be configured");
    file.close();
    m_daemon.setProgram(QStringLiteral("dbus-daemon"));
    m_daemon.setArguments({QStringLiteral("--config-file=") + file.fileName(), QStringLiteral("--nofork"),
                           QStringLiteral("--print-address=1")});
    m_daemon.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGKILL); });
    qputenv(addressVariable, "unix:path=" + socket.toUtf8());
    start();
}

PrivateBus::~PrivateBus() { stop(); }

void PrivateBus::start()
{
    m_daemon.start();
    if (!m_daemon.waitForReadyRead()) // the address, written once it listens
        qFatal("The private bus does not start: %s", m_daemon.readAllStandardError().constData());
}

void PrivateBus::stop()
{
    m_daemon.kill();
    m_daemon.waitForFinished();
    QFile::remove(m_folder.filePath(QStringLiteral("bus")));
}

void PrivateBus::freeze() { ::kill(static_cast<pid_t>(m_daemon.processId()), SIGSTOP); }

void PrivateBus::thaw() { ::kill(static_cast<pid_t>(m_daemon.processId()), SIGCONT); }

} // namespace ambertide
