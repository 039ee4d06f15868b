#include "adapters/linux/SessionApplication.h"

#include "base/Console.h"

#include <QLoggingCategory>

#include <string>

namespace ambertide {

namespace {

bool isWaylandSession() { return !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"); }

/// False when somebody else has chosen. The toolkit may come to nothing without ending the application: it then runs
/// without windows.
bool choosePlatform()
{
    if (qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        return false;
    qputenv("QT_QPA_PLATFORM", isWaylandSession() ? "wayland;xcb;offscreen" : "xcb;offscreen");
    // The display adapter and explainPlatform() say in one line what these would say in several.
    QLoggingCategory::setFilterRules(QStringLiteral("qt.qpa.plugin=false\nqt.qpa.xcb.warning=false"));
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &, const QString &text) {
        if (type == QtFatalMsg)
            console::print(text.toStdString());
    });
    return true;
}

void explainPlatform()
{
    qInstallMessageHandler(nullptr);
    const auto platform = QGuiApplication::platformName();
    if (!isWaylandSession() || platform.startsWith(QStringLiteral("wayland")))
        return;
    const std::string outcome =
        platform == QStringLiteral("xcb") ? "Windows are shown through Xwayland" : "Windows cannot be shown";
    console::print(outcome +
                   ": the compositor does not answer, or Qt's Wayland plugin (package qt6-wayland) is missing.");
}

} // namespace

SessionApplication::SessionApplication(int &argc, char **argv) : SessionApplication(choosePlatform(), argc, argv) {}

SessionApplication::SessionApplication(bool isPlatformOurChoice, int &argc, char **argv) : QApplication(argc, argv)
{
    if (isPlatformOurChoice)
        explainPlatform();
    setDesktopFileName(QStringLiteral("me.tovanu.Ambertide"));
}

} // namespace ambertide
