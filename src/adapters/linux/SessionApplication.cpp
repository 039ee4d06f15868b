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

/// Windows are drawn without GL, but platform themes make a context of it, of 20 MB and more.
constexpr const char *glChoices[] = {"QT_XCB_GL_INTEGRATION", "QT_WAYLAND_CLIENT_BUFFER_INTEGRATION"};

QtMessageHandler toolkitsHandler = nullptr;
std::atomic<bool> isToolkitHeard = true;

void handleMessage(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    // The toolkit would wait for that thread for ever, on the main one.
    if (text.startsWith(QStringLiteral("QThread::start: Thread creation error")))
        std::terminate();
    if (isToolkitHeard)
        toolkitsHandler(type, context, text);
    else if (type == QtFatalMsg)
        console::print(text.toStdString());
}

bool isWaylandSession() { return !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"); }

/// False when somebody else has chosen. The toolkit may come to nothing without ending the application: it then runs
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

/// Those that the user has not set, until this object goes: programs that are started later are to have GL.
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
    QOpenGLContext::supportsThreadedOpenGL(); // on Wayland GL is looked for at the first use
    if (isPlatformOurChoice)
        explainPlatform();
    setDesktopFileName(QStringLiteral("me.tovanu.Ambertide"));
}

} // namespace ambertide
