#include "adapters/linux/SessionApplication.h"

#include "base/Console.h"

#include <QLoggingCategory>
#include <QOpenGLContext>

#include <atomic>
#include <exception>
#include <string>
#include <vector>

namespace ambertide {

namespace {

/// Our windows are drawn without GL, but platform themes would create a GL context, of 20 MB and more.
constexpr const char *glChoices[] = {"QT_XCB_GL_INTEGRATION", "QT_WAYLAND_CLIENT_BUFFER_INTEGRATION"};

QtMessageHandler toolkitsHandler = nullptr;
std::atomic<bool> isToolkitHeard = true;

void handleMessage(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    // The toolkit would go on to wait for that thread for ever, on the main thread.
    if (text.startsWith(QStringLiteral("QThread::start: Thread creation error")))
        std::terminate();
    if (isToolkitHeard)
        toolkitsHandler(type, context, text);
    else if (type == QtFatalMsg)
        console::print(text.toStdString());
}

bool isWaylandSession() { return !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"); }

/// False when the user has chosen. If neither Wayland nor X11 can be used, the application is not ended but runs
/// without windows.
bool choosePlatform()
{
    toolkitsHandler = qInstallMessageHandler(handleMessage);
    if (qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        return false;
    qputenv("QT_QPA_PLATFORM", isWaylandSession() ? "wayland;xcb;offscreen" : "xcb;offscreen");
    // The display adapter and explainPlatform() say in one line what these would say in several.
    QLoggingCategory::setFilterRules(QStringLiteral("qt.qpa.plugin=false\nqt.qpa.xcb.warning=false"));
    isToolkitHeard = false;
    return true;
}

void explainPlatform()
{
    qunsetenv("QT_QPA_PLATFORM"); // what is started later, a new version too, chooses for itself
    isToolkitHeard = true;
    const auto platform = QGuiApplication::platformName();
    if (!isWaylandSession() || platform.startsWith(QStringLiteral("wayland")))
        return;
    const std::string outcome =
        platform == QStringLiteral("xcb") ? "Windows are shown through Xwayland" : "Windows cannot be shown";
    console::print(outcome +
                   ": the compositor does not answer, or Qt's Wayland plugin (package qt6-wayland) is missing.");
}

} // namespace

/// Switches GL off, where the user has made no choice, for as long as this object lives: programs that are started
/// later should have GL.
class SessionApplication::WithoutGL
{
public:
    WithoutGL()
    {
        for (const char *choice : glChoices) {
            if (qEnvironmentVariableIsSet(choice))
                continue;
            qputenv(choice, "none");
            m_made.push_back(choice);
        }
    }
    ~WithoutGL()
    {
        for (const char *choice : m_made)
            qunsetenv(choice);
    }

private:
    std::vector<const char *> m_made;
};

SessionApplication::SessionApplication(int &argc, char **argv)
    : SessionApplication(choosePlatform(), WithoutGL(), argc, argv)
{
}

SessionApplication::SessionApplication(bool isPlatformOurChoice, const WithoutGL &, int &argc, char **argv)
    : QApplication(argc, argv)
{
    // Has the toolkit look for GL now, while it is switched off; on Wayland it would do so only at the first use.
    QOpenGLContext::supportsThreadedOpenGL();
    if (isPlatformOurChoice)
        explainPlatform();
    setDesktopFileName(QStringLiteral("me.tovanu.Ambertide"));
}

} // namespace ambertide
