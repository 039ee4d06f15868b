#pragma once

#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <sys/prctl.h>

#include <csignal>
#include <fstream>
#include <stdexcept>
#include <string>

namespace ambertide {

/// An X server for one test, on a free number of its own. It ends with this object, and with the test's process however
/// that ends. The constructor and start() throw when the server does not come up.
class PrivateXServer
{
public:
    enum class Kind {
        framebuffer, ///< Xvfb: one display
        dummy,       ///< Xorg with the dummy driver: DUMMY0 to DUMMY15, the first of them on
    };

    explicit PrivateXServer(Kind kind) : m_kind(kind)
    {
        std::ofstream(m_folder.filePath(QStringLiteral("xorg.conf")).toStdString()) << R"(
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
        m_process.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGTERM); });
        // Far apart at random rather than the first that is free: another test would take that while this one restarts.
        do {
            m_display = QStringLiteral(":%1").arg(QRandomGenerator::global()->bounded(1000, 59000));
        } while (QFile::exists(QStringLiteral("/tmp/.X%1-lock").arg(m_display.mid(1))));
        start();
    }
    ~PrivateXServer() { stop(); }

    /// ":" and the number. It stays the same when the server is stopped and started again.
    std::string display() const { return m_display.toStdString(); }
    void stop()
    {
        m_process.terminate(); // so that it removes its lock
        m_process.waitForFinished(10'000);
    }
    void start()
    {
        // The Xorg in PATH may be a wrapper that wants a console.
        const auto program = QString::fromLatin1(m_kind == Kind::dummy ? "/usr/lib/xorg/Xorg" : "Xvfb");
        auto command = QStringLiteral("%1 %2 -displayfd 1 -noreset -nolisten tcp").arg(program, m_display);
        if (m_kind == Kind::dummy)
            command += QStringLiteral(" -novtswitch -sharevts -keeptty -config %1/xorg.conf -logfile %1/xorg.log")
                           .arg(m_folder.path());
        m_process.startCommand(command);
        // It writes its number when it listens.
        while (m_process.state() != QProcess::NotRunning && !m_process.canReadLine())
            m_process.waitForReadyRead(30'000);
        if (m_process.state() == QProcess::NotRunning)
            throw std::runtime_error("no X server: " + m_process.readAllStandardError().toStdString());
    }
    /// It stays as it is, but answers nobody.
    void suspend() const { ::kill(static_cast<pid_t>(m_process.processId()), SIGSTOP); }
    void resume() const { ::kill(static_cast<pid_t>(m_process.processId()), SIGCONT); }

    /// Runs the `xrandr` program with these arguments.
    void xrandr(const QString &arguments) const
    {
        const QStringList atThisServer = {QStringLiteral("--display"), m_display};
        if (QProcess::execute(QStringLiteral("xrandr"), atThisServer + arguments.split(u' ')) != 0)
            throw std::runtime_error("xrandr failed: " + arguments.toStdString());
    }
    void switchOn(const QString &output) const
    {
        xrandr(QStringLiteral("--addmode %1 640x480").arg(output));
        xrandr(QStringLiteral("--output %1 --mode 640x480").arg(output));
    }
    void switchOff(const QString &output) const { xrandr(QStringLiteral("--output %1 --off").arg(output)); }

private:
    const Kind m_kind;
    QTemporaryDir m_folder;
    QProcess m_process;
    QString m_display;
};

} // namespace ambertide
