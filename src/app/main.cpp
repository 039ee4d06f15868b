#include "adapters/linux/bus/DBusNotificationCenter.h"
#include "adapters/linux/bus/DBusRunningApplications.h"
#include "adapters/linux/bus/DBusSession.h"
#include "adapters/linux/desktop/FeedbackdHapticPerformer.h"
#include "adapters/linux/desktop/LogindSystemWake.h"
#include "adapters/linux/desktop/PortalAppearance.h"
#include "adapters/linux/desktop/XdgLoginItem.h"
#include "adapters/linux/displays/SessionDisplayServices.h"
#include "adapters/linux/elevation/PkexecPrivilegedRunner.h"
#include "adapters/linux/elevation/PkexecUpdateInstaller.h"
#include "adapters/linux/panel/DesktopPanelPlacement.h"
#include "adapters/linux/services/DBusApplicationObject.h"
#include "adapters/linux/services/DBusTemperatureObject.h"
#include "adapters/linux/services/GnomeSearchProvider.h"
#include "adapters/linux/services/KRunnerObject.h"
#include "adapters/linux/tray/DesktopTrayIcon.h"
#include "adapters/qt/PlistMainBundle.h"
#include "adapters/qt/QtMainActor.h"
#include "adapters/qt/SettingsUserDefaults.h"
#include "adapters/qt/SystemCalendar.h"
#include "adapters/qt/ThreadTaskExecutor.h"
#include "app/AmbertideApp.h"
#include "app/AppScenes.h"
#include "app/EndingSignals.h"
#include "app/Translations.h"
#include "base/Console.h"
#include "integration/CLIInstaller.h"
#include "integration/LaunchHelper.h"
#include "model/presets/SetColorTemperatureShortcut.h"
#include "ui/controls/AccessibleApplication.h"
#include "ui/controls/ApplicationIcon.h"
#include "ui/updates/UpdateWindow.h"
#include "update/AppcastUpdaterController.h"
#include "update/UpdateService.h"

#include <QApplication>
#include <QLocale>
#include <QLoggingCategory>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <future>
#include <memory>
#include <optional>
#include <string>

namespace {

using namespace ambertide;
using namespace std::chrono_literals;

/// Keeps what has been asked for by now, as far as the main thread and the disk do their part in time.
void keepSettings(SettingsUserDefaults &userDefaults)
{
    constexpr auto timeForEach = 150ms;
    const auto turn = std::make_shared<std::promise<void>>(); // may come long after nobody waits for it
    QMetaObject::invokeMethod(
        qApp, [turn] { turn->set_value(); }, Qt::QueuedConnection);
    turn->get_future().wait_for(timeForEach);
    userDefaults.flush(timeForEach);
}

/// Descriptors 0 to 2 that were closed at the start would be given to sockets, and lines printed into those.
void openStandardDescriptors()
{
    int opened = 0;
    do
        opened = open("/dev/null", O_RDWR);
    while (opened >= 0 && opened <= STDERR_FILENO);
    if (opened > STDERR_FILENO)
        close(opened);
}

bool isWaylandSession() { return !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"); }

/// The toolkit may come to nothing without ending the application: it then runs without windows.
void chooseToolkitPlatform()
{
    qputenv("QT_QPA_PLATFORM", isWaylandSession() ? "wayland;xcb;offscreen" : "xcb;offscreen");
    // The display adapter and explainToolkitPlatform() say in one line what these would say in several.
    QLoggingCategory::setFilterRules(QStringLiteral("qt.qpa.plugin=false\nqt.qpa.xcb.warning=false"));
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &, const QString &text) {
        if (type == QtFatalMsg)
            console::print(text.toStdString());
    });
}

void explainToolkitPlatform()
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

/// Whatever windows are open: QCoreApplication::quit() would ask them, and the one of an update under way says no.
void quit() { QCoreApplication::exit(); }

/// Puts the program that the file now holds in the place of this one. Returns when that fails.
void startAnew(const std::filesystem::path &program, char *argv[])
{
    sigset_t ending;
    sigemptyset(&ending);
    for (const int signal : {SIGTERM, SIGINT}) {
        std::signal(signal, SIG_DFL);
        sigaddset(&ending, signal);
    }
    pthread_sigmask(SIG_UNBLOCK, &ending, nullptr);
    execv(program.c_str(), argv);
    console::print("The new version cannot be started: " + std::string(std::strerror(errno)));
}

/// The application from its start to its end. Sets `isRestartWanted` when it ends to be started again.
int run(int argc, char *argv[], const std::filesystem::path &program, bool &isRestartWanted)
{
    const auto displays = makeSessionDisplayServices(program.parent_path());

    const bool isPlatformOurChoice = !qEnvironmentVariableIsSet("QT_QPA_PLATFORM");
    if (isPlatformOurChoice)
        chooseToolkitPlatform();
    QApplication application(argc, argv);
    AccessibleApplication::install();
    if (isPlatformOurChoice)
        explainToolkitPlatform();
    QApplication::setApplicationName(QStringLiteral("Ambertide"));
    QApplication::setApplicationVersion(QStringLiteral(AMBERTIDE_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("me.tovanu.Ambertide"));
    QApplication::setWindowIcon(applicationIcon());

    installTranslations(application, QLocale().uiLanguages());

    const PlistMainBundle mainBundle(program);
    const SystemCalendar calendar;
    SettingsUserDefaults userDefaults;
    setLastWork([&userDefaults] { keepSettings(userDefaults); });
    DBusSession sessionBus(SdBusKind::session);
    DBusSession systemBus(SdBusKind::system);
    DBusNotificationCenter distributedNotifications(sessionBus);
    DBusRunningApplications runningApplications(sessionBus);
    LogindSystemWake wake(systemBus);
    QtMainActor mainActor;
    ThreadTaskExecutor executor(mainActor);

    PkexecUpdateInstaller updateInstaller(program.parent_path() / "AmbertideInstallHelper");
    UpdateService updates(UpdateConfiguration::fromBundle(mainBundle), userDefaults, calendar, updateInstaller,
                          [&](UpdateSession &session) {
                              return std::make_unique<UpdateWindow>(session, [&] {
                                  isRestartWanted = true;
                                  quit();
                              });
                          });
    const auto createUpdaterController = [&] { return std::make_unique<AppcastUpdaterController>(updates, executor); };

    std::optional<AppScenes> scenes;
    bool isSuperfluous = false;
    std::optional<AmbertideApp> ambertide(
        std::in_place,
        AmbertideApp::Ports{*displays, executor, wake, userDefaults, distributedNotifications, runningApplications,
                            calendar, mainBundle, createUpdaterController, [&] { isSuperfluous = true; },
                            [&] {
                                if (scenes)
                                    scenes->bringSettingsForward();
                            }});
    ambertide->delegate().applicationDidFinishLaunching();
    if (isSuperfluous) {
        // The displays are the other copy's: this one must go without giving them back.
        std::_Exit(EXIT_SUCCESS);
    }
    QApplication::setQuitOnLastWindowClosed(ambertide->delegate().applicationShouldTerminateAfterLastWindowClosed());

    PkexecPrivilegedRunner privilegedRunner;
    CLIInstaller::makeShared(mainBundle, privilegedRunner);
    XdgLoginItem loginItem(mainBundle);
    LaunchHelper::makeShared(loginItem);
    PortalAppearance appearance(sessionBus);
    FeedbackdHapticPerformer haptics(sessionBus);
    DesktopPanelPlacement placement;
    ThreadTaskExecutor installerExecutor(mainActor);
    const auto createTrayIcon = [&](TrayIcon::Callbacks callbacks) {
        return std::make_unique<DesktopTrayIcon>(sessionBus, mainBundle.path() / "Contents/Resources/icons",
                                                 std::move(callbacks));
    };
    scenes.emplace(AppScenes::Ports{
        ambertide->viewModel(), ambertide->updater(), executor, appearance, haptics, placement, createTrayIcon,
        SettingsView::Ports{CLIInstaller::shared(), LaunchHelper::shared(), mainBundle, createUpdaterController,
                            userDefaults, ambertide->notifications(), calendar, loginItem, installerExecutor},
        quit});

    const auto perform = [&](ColorTemperature preset) {
        SetColorTemperatureShortcut{preset}.perform(userDefaults, distributedNotifications);
    };
    const auto activate = [&](const std::string &activationToken) {
        // The toolkit takes the token from there when a window asks to be active.
        if (!activationToken.empty())
            qputenv("XDG_ACTIVATION_TOKEN", QByteArray::fromStdString(activationToken));
        scenes->activate();
    };
    DBusApplicationObject busObject(sessionBus, activate, perform);
    busObject.setAction("quit", [](const std::string &) { quit(); });
    busObject.setAction("settings", [&](const std::string &) { scenes->showSettings(); });
    busObject.setAction("check-for-updates", [&](const std::string &) { ambertide->updater().checkForUpdates(); });
    const KRunnerObject runner(sessionBus, perform);
    const GnomeSearchProvider searchProvider(sessionBus, perform, [&] { activate({}); });
    const DBusTemperatureObject temperatureObject(sessionBus, ambertide->viewModel());

    const int status = QApplication::exec();

    scenes.reset();
    privilegedRunner.cancel();
    ambertide->delegate().applicationWillTerminate();
    ambertide.reset();
    // Ending already; the handler must not meet what is being taken down.
    std::signal(SIGTERM, SIG_IGN);
    std::signal(SIGINT, SIG_IGN);
    setLastWork({});
    if (!executor.waitUntilIdle(1s)) {
        // The display server does not answer. Waiting for it is the guardian's job.
        userDefaults.flush(300ms);
        std::_Exit(status);
    }
    return status;
}

} // namespace

int main(int argc, char *argv[])
{
    openStandardDescriptors();
    confineEndingSignals();
    std::signal(SIGPIPE, SIG_IGN);
    std::error_code error;
    // Now: an update may put another file in the place of this one.
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    bool isRestartWanted = false;
    const int status = run(argc, argv, program, isRestartWanted);
    if (isRestartWanted)
        startAnew(program, argv);
    return status;
}
