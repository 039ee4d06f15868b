#include "e2e/ApplicationProcess.h"

#include "adapters/linux/bus/BusNames.h"
#include "adapters/linux/bus/SdBus.h"
#include "display/DisplayManager.h"

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

bool PrivateSession::shows(double temperature)
{
    const auto tables = DisplayManager::createGammaTables(temperature);
    const auto active = m_client.activeCrtcs();
    return std::ranges::all_of(active, [&](auto crtc) {
        const auto ramp = m_client.ramp(crtc);
        const auto isLevel = [](int level, float expected) { return std::abs(level - 65535 * double(expected)) <= 1; };
        return isLevel(ramp[0].back(), tables.red[255]) && isLevel(ramp[1].back(), tables.green[255]) &&
               isLevel(ramp[2].back(), tables.blue[255]);
    });
}

bool PrivateSession::isTinted()
{
    return std::ranges::all_of(m_client.activeCrtcs(), [this](auto crtc) {
        const auto ramp = m_client.ramp(crtc);
        return ramp[0].back() == 65535 && ramp[2].back() < 65000;
    });
}

void PrivateSession::writeSettings(const QByteArray &content)
{
    QDir().mkpath(QFileInfo(settingsPath()).path());
    QFile file(settingsPath());
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        throw std::runtime_error("cannot write the settings");
}

ApplicationProcess::ApplicationProcess(Output output)
{
    m_process.setProcessChannelMode(QProcess::MergedChannels);
    if (output == Output::discarded)
        m_process.setStandardOutputFile(QProcess::nullDevice());
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
    while (!('\n' + m_printed).contains('\n' + beginning)) {
        if (deadline.hasExpired() || (!isRunning() && m_process.atEnd()))
            return false;
        m_process.waitForReadyRead(100);
        m_printed += m_process.readAll();
    }
    return true;
}

void ApplicationProcess::sendSignal(int signal) const { ::kill(processIdentifier(), signal); }

int ApplicationProcess::waitForEnd()
{
    if (isRunning() && !m_process.waitForFinished(patience))
        return -1000;
    return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -m_process.exitCode();
}

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

QByteArray runTool(const QStringList &arguments)
{
    QProcess process;
    process.start(programs + QStringLiteral("AmbertideCLI"), arguments);
    process.waitForFinished(patience);
    return process.exitCode() == 0 ? process.readAllStandardOutput() : QByteArray("failed");
}

} // namespace ambertide
