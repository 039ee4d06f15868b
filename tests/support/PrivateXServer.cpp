#include "support/PrivateXServer.h"

#include <QRandomGenerator>

#include <sys/prctl.h>

#include <csignal>
#include <fstream>
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
)";

QStringList words(const QString &line) { return line.split(QLatin1Char(' ')); }

} // namespace

PrivateXServer::PrivateXServer(Kind kind) : m_kind(kind)
{
    std::ofstream(m_folder.filePath(QStringLiteral("xorg.conf")).toStdString()) << dummyConfiguration;
    m_process.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGTERM); });
    // Far apart at random rather than the first that is free: another test would take that while this one restarts.
    for (int attempt = 1; attempt < 5 && !isRunning(); ++attempt) {
        m_display = QStringLiteral(":%1").arg(QRandomGenerator::global()->bounded(1000, 59000));
        tryToStart();
    }
    if (!isRunning())
        start();
}

PrivateXServer::~PrivateXServer() { stop(); }

void PrivateXServer::start()
{
    tryToStart();
    if (!isRunning())
        throw std::runtime_error("the X server has not started: " + m_process.readAllStandardError().toStdString());
}

void PrivateXServer::tryToStart()
{
    auto arguments = words(QStringLiteral("%1 -displayfd 1 -noreset -nolisten tcp").arg(m_display));
    if (m_kind == Kind::dummy)
        arguments += words(QStringLiteral("-novtswitch -sharevts -keeptty -config %1/xorg.conf -logfile %1/xorg.log")
                               .arg(m_folder.path()));
    // The Xorg in PATH may be a wrapper that wants a console.
    m_process.start(QLatin1String(m_kind == Kind::dummy ? "/usr/lib/xorg/Xorg" : "Xvfb"), arguments);
    // It writes its number when it listens.
    while (m_process.state() != QProcess::NotRunning && !m_process.canReadLine())
        m_process.waitForReadyRead(30'000);
}

void PrivateXServer::stop()
{
    m_process.terminate();
    if (!m_process.waitForFinished(10'000)) {
        m_process.kill();
        m_process.waitForFinished();
    }
}

void PrivateXServer::xrandr(const QString &arguments) const
{
    const auto all = words(QStringLiteral("--display %1 %2").arg(m_display, arguments));
    if (QProcess::execute(QStringLiteral("xrandr"), all) != 0)
        throw std::runtime_error("xrandr failed: " + arguments.toStdString());
}

void PrivateXServer::switchOn(const QString &output) const
{
    xrandr(QStringLiteral("--addmode %1 640x480").arg(output));
    xrandr(QStringLiteral("--output %1 --mode 640x480").arg(output));
}

} // namespace ambertide
