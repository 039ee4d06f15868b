#include "support/PrivateXServer.h"

#include <QFile>
#include <QRandomGenerator>

#include <sys/prctl.h>

#include <csignal>
#include <stdexcept>

namespace ambertide {

namespace {

constexpr auto dummyConfiguration = R"(
Section "ServerFlags"
    Option "AutoAddDevices" "false"
    Option "AutoAddGPU" "false"
EndSection
Section "Device"
    Identifier "dummy"
    Driver "dummy"
    VideoRam 256000
EndSection
Section "Screen"
    Identifier "screen"
    Device "dummy"
EndSection
)";

} // namespace

PrivateXServer::PrivateXServer(Kind kind) : m_kind(kind)
{
    {
        QFile configuration(m_folder.filePath(QStringLiteral("xorg.conf")));
        if (!configuration.open(QIODevice::WriteOnly) || configuration.write(dummyConfiguration) < 0)
            throw std::runtime_error("cannot write the configuration of the X server");
    }
    m_process.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGTERM); });
    // Far apart at random rather than the first that is free: another test would take that while this one restarts.
    for (int attempt = 0; attempt < 5 && !isRunning(); ++attempt) {
        m_display = QStringLiteral(":%1").arg(QRandomGenerator::global()->bounded(1000, 59000));
        tryToStart();
    }
    throwUnlessRunning();
}

PrivateXServer::~PrivateXServer() { stop(); }

void PrivateXServer::start()
{
    tryToStart();
    throwUnlessRunning();
}

void PrivateXServer::tryToStart()
{
    QStringList arguments = QStringLiteral("-displayfd 1 -noreset -nolisten tcp").split(QLatin1Char(' '));
    QString program = QStringLiteral("Xvfb");
    if (m_kind == Kind::dummy) {
        program = QStringLiteral("/usr/lib/xorg/Xorg"); // the one in PATH may be a wrapper that wants a console
        arguments += QStringLiteral("-novtswitch -sharevts -keeptty -config").split(QLatin1Char(' '));
        arguments += {m_folder.filePath(QStringLiteral("xorg.conf")), QStringLiteral("-logfile"),
                      m_folder.filePath(QStringLiteral("xorg.log"))};
    }
    m_process.start(program, arguments + QStringList{m_display});
    // It writes its number when it listens.
    while (m_process.state() != QProcess::NotRunning && !m_process.canReadLine())
        m_process.waitForReadyRead(30'000);
}

void PrivateXServer::throwUnlessRunning()
{
    if (!isRunning())
        throw std::runtime_error("the X server has not started: " + m_process.readAllStandardError().toStdString());
}

void PrivateXServer::stop()
{
    m_process.terminate();
    if (!m_process.waitForFinished(10'000)) {
        m_process.kill();
        m_process.waitForFinished();
    }
}

void PrivateXServer::xrandr(const QStringList &arguments) const
{
    if (QProcess::execute(QStringLiteral("xrandr"), QStringList{QStringLiteral("--display"), m_display} + arguments) !=
        0)
        throw std::runtime_error("xrandr failed: " + arguments.join(QLatin1Char(' ')).toStdString());
}

void PrivateXServer::switchOn(const QString &output) const
{
    const auto mode = QStringLiteral("640x480");
    xrandr({QStringLiteral("--addmode"), output, mode});
    xrandr({QStringLiteral("--output"), output, QStringLiteral("--mode"), mode});
}

} // namespace ambertide
