#include "Session.h"

#include <QDir>
#include <QFile>

#include <thread>
#include <utility>

namespace ambertide {

using namespace std::chrono_literals;

namespace {

const QString programs = QStringLiteral(AMBERTIDE_BUNDLE "/Contents/MacOS/");

} // namespace

Session::Session()
{
    qputenv("DISPLAY", QByteArray::fromStdString(m_server.display()));
    qputenv("XDG_CONFIG_HOME", m_folder.path().toUtf8());
    qunsetenv("WAYLAND_DISPLAY");
    qunsetenv("QT_QPA_PLATFORM");
    // Xvfb begins with black tables, which an application that ends before it has tinted leaves alone.
    QProcess::execute(QStringLiteral("xrandr"), QStringLiteral("--output screen --gamma 1:1:1").split(u' '));
}

void Session::start()
{
    m_application.setStandardOutputFile(QProcess::nullDevice());
    // Otherwise the panel would open some seconds later, since nothing here shows tray icons.
    m_application.start(programs + QStringLiteral("Ambertide"), {QStringLiteral("--at-login")});
    m_application.waitForStarted();
}

void Session::waitUntilReached()
{
    waitFor("the application does not answer", [this] { return tool({QStringLiteral("get")}) == 0; });
}

void Session::stop()
{
    m_application.terminate();
    m_application.waitForFinished();
    waitFor("the displays are not restored", [this] { return m_client.showsIdentityEverywhere(); });
}

int Session::tool(const QStringList &arguments)
{
    QProcess process;
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(programs + QStringLiteral("AmbertideCLI"), arguments);
    process.waitForFinished();
    return process.exitCode();
}

void Session::settle()
{
    auto last = shown();
    for (int quiet = 0; quiet < 5; ++quiet) {
        std::this_thread::sleep_for(100ms);
        if (auto now = shown(); now != last) {
            last = std::move(now);
            quiet = 0;
        }
    }
}

void Session::store(const char *temperature)
{
    QDir(m_folder.path()).mkpath(QStringLiteral("ambertide"));
    QFile file(m_folder.filePath(QStringLiteral("ambertide/defaults.ini")));
    if (!file.open(QIODevice::WriteOnly))
        throw std::runtime_error("cannot write the settings");
    file.write(QByteArray("[General]\nAmbertide.Temperature=") + temperature + '\n');
}

Caller::Caller()
{
    if (!m_bus || !waitUntilReady(m_bus.get(), Clock::now() + 20s))
        throw std::runtime_error("the bus does not answer");
}

} // namespace ambertide
