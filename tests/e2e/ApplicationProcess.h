#pragma once

#include "display/DisplayManager.h"
#include "support/PrivateBus.h"
#include "support/PrivateXServer.h"
#include "support/RandrClient.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <filesystem>
#include <fstream>

namespace ambertide {

constexpr int patience = 20'000; ///< ms; only a failure takes as long

/// A session of the test's own: an X server, both buses and a home, which the programs started meanwhile find in the
/// environment.
class PrivateSession
{
public:
    explicit PrivateSession(PrivateXServer::Kind kind = PrivateXServer::Kind::framebuffer) : server(kind)
    {
        qputenv("DISPLAY", QByteArray::fromStdString(server.display()));
        for (const char *variable : {"XDG_CONFIG_HOME", "XDG_RUNTIME_DIR"})
            qputenv(variable, m_home.path().toUtf8());
        for (const char *variable : {"WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
            qunsetenv(variable);
    }

    PrivateXServer server;
    PrivateBus bus;

    /// Whether every active display has the white point of this temperature.
    bool shows(double temperature)
    {
        const auto tables = DisplayManager::createGammaTables(temperature);
        return everyWhitePoint([&tables](int red, int green, int blue) {
            const auto is = [](int level, float expected) { return std::abs(level - 65535 * double(expected)) <= 1; };
            return is(red, tables.red[255]) && is(green, tables.green[255]) && is(blue, tables.blue[255]);
        });
    }
    /// Whether every active display is tinted, with whatever temperature.
    bool isTinted()
    {
        return everyWhitePoint([](int red, int, int blue) { return red == 65535 && blue < 65000; });
    }
    bool isRestored() { return m_client.showsIdentityEverywhere(); }

    QString settingsPath() const { return m_home.filePath(QStringLiteral("ambertide/defaults.ini")); }
    void writeSettings(const char *content)
    {
        const std::filesystem::path path = settingsPath().toStdString();
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path) << content;
    }

private:
    bool everyWhitePoint(const std::function<bool(int, int, int)> &isRight)
    {
        return std::ranges::all_of(m_client.activeCrtcs(), [&](auto crtc) {
            const auto ramp = m_client.ramp(crtc);
            return isRight(ramp[0].back(), ramp[1].back(), ramp[2].back());
        });
    }

    PrivateBus m_systemBus{"DBUS_SYSTEM_BUS_ADDRESS"};
    QTemporaryDir m_home;
    RandrClient m_client{server.display()};
};

/// One run of the built application. Killed with this object if it still runs.
class ApplicationProcess
{
public:
    explicit ApplicationProcess(const QStringList &arguments = {})
    {
        m_process.setProcessChannelMode(QProcess::MergedChannels);
        m_process.start(QStringLiteral(AMBERTIDE_BUNDLE "/Contents/MacOS/Ambertide"), arguments);
        m_process.waitForStarted();
    }
    ~ApplicationProcess()
    {
        m_process.kill();
        m_process.waitForFinished();
    }

    bool isRunning() const { return m_process.state() != QProcess::NotRunning; }
    pid_t processIdentifier() const { return static_cast<pid_t>(m_process.processId()); }
    /// Waits for a line that begins like this.
    bool waitForLine(const QByteArray &beginning)
    {
        return QTest::qWaitFor(
            [&] {
                m_printed += m_process.readAll();
                return ('\n' + m_printed).contains('\n' + beginning);
            },
            patience);
    }
    /// Waits until it takes requests.
    bool waitUntilRegistered() { return waitForLine("Registering for CLI temperature notifications..."); }
    QByteArray printed() const { return m_printed; }
    void sendSignal(int signal) const { ::kill(processIdentifier(), signal); }
    /// The exit status, or minus the signal that ended it; -1000 when it does not end.
    int waitForEnd()
    {
        if (isRunning() && !m_process.waitForFinished(patience))
            return -1000;
        return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -m_process.exitCode();
    }

private:
    QProcess m_process;
    QByteArray m_printed;
};

/// Runs the command-line tool of the bundle. What it printed, or "failed" when its status is not 0.
inline QByteArray runTool(const QByteArray &arguments)
{
    QProcess process;
    process.start(QStringLiteral(AMBERTIDE_BUNDLE "/Contents/MacOS/AmbertideCLI"),
                  QString::fromUtf8(arguments).split(u' '));
    process.waitForFinished(patience);
    return process.exitCode() == 0 ? process.readAllStandardOutput() : QByteArray("failed");
}

} // namespace ambertide
