#pragma once

#include <QProcess>
#include <QTemporaryDir>

#include <csignal>
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

    explicit PrivateXServer(Kind kind);
    ~PrivateXServer();

    /// ":" and the number. It stays the same when the server is stopped and started again.
    std::string display() const { return m_display.toStdString(); }
    void stop();
    void start();
    /// It stays as it is, but answers nobody.
    void suspend() const { ::kill(static_cast<pid_t>(m_process.processId()), SIGSTOP); }
    void resume() const { ::kill(static_cast<pid_t>(m_process.processId()), SIGCONT); }

    /// Runs the `xrandr` program with these arguments.
    void xrandr(const QString &arguments) const;
    void switchOn(const QString &output) const;
    void switchOff(const QString &output) const { xrandr(QStringLiteral("--output %1 --off").arg(output)); }

private:
    bool isRunning() const { return m_process.state() == QProcess::Running; }
    void tryToStart();

    const Kind m_kind;
    QTemporaryDir m_folder;
    QProcess m_process;
    QString m_display;
};

} // namespace ambertide
