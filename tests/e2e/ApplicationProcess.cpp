#include "e2e/ApplicationProcess.h"

#include "display/DisplayManager.h"
#include "platform/linux/BusNames.h"
#include "platform/linux/SdBus.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cmath>
#include <csignal>

namespace ambertide {

namespace {

const QString programs = QStringLiteral(AMBERTIDE_BUNDLE "/Contents/MacOS/");
constexpr int patience = 20'000; // ms; only a failure takes as long

} // namespace

PrivateSession::PrivateSession(PrivateXServer::Kind kind) : server(kind), m_client(server.display())
{
    qputenv("DISPLAY", QByteArray::fromStdString(server.display()));
    qputenv("XDG_CONFIG_HOME", m_home.path().toUtf8());
    qputenv("XDG_RUNTIME_DIR", m_home.path().toUtf8());
    qunsetenv("WAYLAND_DISPLAY");
    qunsetenv("QT_QPA_PLATFORM");
}

std::vector<int> PrivateSession::whitePoint()
{
    std::vector<int> common;
    for (const auto crtc : m_client.activeCrtcs()) {
        const auto ramp = m_client.ramp(crtc);
        const std::vector<int> shown = {ramp[0].back(), ramp[1].back(), ramp[2].back()};
        if (!common.empty() && shown != common)
            return {};
        common = shown;
    }
    return common;
}

bool PrivateSession::isRestored() { return m_client.showsIdentityEverywhere(); }

bool PrivateSession::shows(double temperature)
{
    const auto tables = DisplayManager::createGammaTables(temperature);
    const auto shown = whitePoint();
    const auto isLevel = [](int level, float expected) { return std::abs(level - 65535 * double(expected)) <= 1; };
    return shown.size() == 3 && isLevel(shown[0], tables.red[255]) && isLevel(shown[1], tables.green[255]) &&
           isLevel(shown[2], tables.blue[255]);
}

void PrivateSession::writeSettings(const QByteArray &content)
{
    QDir().mkpath(QFileInfo(settingsPath()).path());
    QFile file(settingsPath());
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        throw std::runtime_error("cannot write the settings");
}

ApplicationProcess::ApplicationProcess(const QProcessEnvironment &environment)
{
    m_process.setProcessEnvironment(environment);
    m_process.setProcessChannelMode(QProcess::MergedChannels);
    m_process.start(programs + QStringLiteral("Ambertide"), {});
    m_process.waitForStarted();
}

ApplicationProcess::~ApplicationProcess()
{
    m_process.kill();
    m_process.waitForFinished();
}

bool ApplicationProcess::waitForLine(const QByteArray &beginning)
{
    const QDeadlineTimer deadline(patience);
    while (!(('\n' + printed()).contains('\n' + beginning))) {
        if (deadline.hasExpired() || !isRunning())
            return false;
        m_process.waitForReadyRead(100);
    }
    return true;
}

QByteArray ApplicationProcess::printed()
{
    m_printed += m_process.readAll();
    return m_printed;
}

int ApplicationProcess::waitForEnd()
{
    if (isRunning() && !m_process.waitForFinished(patience))
        return -1000;
    return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -m_process.exitCode();
}

int ApplicationProcess::kill(pid_t process, int signal) { return ::kill(process, signal); }

bool activateAction(const char *action)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(patience);
    const auto bus = openSdBus(SdBusKind::session);
    if (!bus || !waitUntilReady(bus.get(), deadline))
        return false;
    sd_bus_message *call = nullptr;
    sd_bus_message_new_method_call(bus.get(), &call, bus_names::application, bus_names::applicationPath,
                                   bus_names::applicationInterface, "ActivateAction");
    const SdBusMessage owned(call);
    sd_bus_message_append(call, "sava{sv}", action, 0, 0);
    return callUntil(bus.get(), call, deadline) != nullptr;
}

ToolResult runTool(const QStringList &arguments)
{
    QProcess process;
    process.start(programs + QStringLiteral("AmbertideCLI"), arguments);
    process.waitForFinished(patience);
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

} // namespace ambertide
