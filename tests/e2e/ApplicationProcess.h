#pragma once

#include "support/PrivateBus.h"
#include "support/PrivateXServer.h"
#include "support/RandrClient.h"

#include <QProcess>
#include <QTemporaryDir>

#include <vector>

namespace ambertide {

/// A session of the test's own: an X server, both buses and a home, which the programs started meanwhile find in the
/// environment.
class PrivateSession
{
public:
    explicit PrivateSession(PrivateXServer::Kind kind = PrivateXServer::Kind::framebuffer);

    PrivateXServer server;
    PrivateBus bus;

    /// Whether every active display has the white point of this temperature.
    bool shows(double temperature);
    /// Whether every active display is tinted, with whatever temperature.
    bool isTinted();
    bool isRestored() { return m_client.showsIdentityEverywhere(); }

    QString settingsPath() const { return m_home.filePath(QStringLiteral("ambertide/defaults.ini")); }
    void writeSettings(const QByteArray &content);

private:
    PrivateBus m_systemBus{"DBUS_SYSTEM_BUS_ADDRESS"};
    QTemporaryDir m_home;
    RandrClient m_client;
};

/// One run of the built application. Killed with this object if it still runs.
class ApplicationProcess
{
public:
    /// Kept output must be read, else the application waits for that before it prints more.
    enum class Output { kept, discarded };

    explicit ApplicationProcess(Output output = Output::kept);
    ~ApplicationProcess();

    bool isRunning() const { return m_process.state() != QProcess::NotRunning; }
    pid_t processIdentifier() const { return static_cast<pid_t>(m_process.processId()); }
    /// Waits for a line that begins like this. False when the process ends without it.
    bool waitForLine(const QByteArray &beginning);
    /// Waits until it takes requests.
    bool waitUntilRegistered() { return waitForLine("Registering for CLI temperature notifications..."); }
    QByteArray printed() const { return m_printed; }
    void sendSignal(int signal) const;
    /// The exit status, or minus the signal that ended it; -1000 when it does not end.
    int waitForEnd();

private:
    QProcess m_process;
    QByteArray m_printed;
};

/// Calls org.freedesktop.Application.ActivateAction of the running application. False when it refuses or is not there.
bool activateAction(const char *action);

/// Runs the command-line tool of the bundle. What it printed, or "failed" when its status is not 0.
QByteArray runTool(const QStringList &arguments);

} // namespace ambertide
