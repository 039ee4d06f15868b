#pragma once

#include "support/PrivateBus.h"
#include "support/PrivateXServer.h"
#include "support/RandrClient.h"

#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>
#include <string>
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
    PrivateBus systemBus{"DBUS_SYSTEM_BUS_ADDRESS"};

    /// The white point that every display shows, red, green, blue; empty when they differ.
    std::vector<int> whitePoint();
    bool isRestored();
    bool shows(double temperature);

    QString settingsPath() const { return m_home.filePath(QStringLiteral("ambertide/defaults.ini")); }
    void writeSettings(const QByteArray &content);

private:
    QTemporaryDir m_home;
    RandrClient m_client;
};

/// One run of the built application. Killed with this object if it still runs.
class ApplicationProcess
{
public:
    explicit ApplicationProcess(const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment());
    ~ApplicationProcess();

    bool isRunning() const { return m_process.state() != QProcess::NotRunning; }
    pid_t processIdentifier() const { return static_cast<pid_t>(m_process.processId()); }
    /// Waits for a line that begins like this. False when the process ends without it.
    bool waitForLine(const QByteArray &beginning);
    /// Everything printed until now.
    QByteArray printed();
    void sendSignal(int signal) { kill(processIdentifier(), signal); }
    /// The exit status, or minus the signal that ended it; -1000 when it does not end.
    int waitForEnd();

private:
    static int kill(pid_t process, int signal);

    QProcess m_process;
    QByteArray m_printed;
};

/// Calls org.freedesktop.Application.ActivateAction of the running application. False when it refuses or is not there.
bool activateAction(const char *action);

struct ToolResult
{
    int status;
    QByteArray output;
    QByteArray error;
};

/// Runs the command-line tool of the bundle.
ToolResult runTool(const QStringList &arguments);

} // namespace ambertide
