#include "app/AmbertideApp.h"

#include "app/Translations.h"
#include "app/Updates.h"
#include "integration/CLIInstaller.h"
#include "integration/LaunchHelper.h"
#include "ports/PrivilegedRunner.h"
#include "ui/controls/AccessibleApplication.h"
#include "ui/controls/ApplicationIcon.h"
#include "ui/settings/SettingsView.h"

#include <QApplication>
#include <QLocale>

#include <utility>

namespace ambertide {

AmbertideApp::AmbertideApp(SystemPorts system)
    : m_system(std::move(system)), m_createUpdaterController(makeUpdates(m_system, [this] { restart(); })),
      m_viewModel({.displays = m_system.displays,
                   .executor = m_system.executor,
                   .wake = m_system.wake,
                   .userDefaults = m_system.userDefaults,
                   .notifications = m_notifications,
                   .distributedNotifications = m_system.distributedNotifications,
                   .calendar = m_system.calendar}),
      m_updater(m_createUpdaterController, m_system.userDefaults),
      m_delegate({.mainBundle = m_system.mainBundle,
                  .runningApplications = m_system.runningApplications,
                  .notifications = m_notifications,
                  .distributedNotifications = m_system.distributedNotifications,
                  .wake = m_system.wake,
                  .userDefaults = m_system.userDefaults,
                  .executor = m_system.executor,
                  .terminate =
                      [this] {
                          m_ending = Ending::Superfluous;
                          quit();
                      },
                  .bringSettingsForward =
                      [this] {
                          bringSettingsForward();
                          // Without an icon the panel is what the second start was for.
                          if (m_menuBarExtra && !m_menuBarExtra->isIconShown())
                              m_menuBarExtra->show();
                      }})
{
    AccessibleApplication::install();
    QApplication::setApplicationName(QStringLiteral("Ambertide"));
    QApplication::setApplicationVersion(QStringLiteral(AMBERTIDE_VERSION));
    QApplication::setWindowIcon(applicationIcon());
    QApplication::setQuitOnLastWindowClosed(m_delegate.applicationShouldTerminateAfterLastWindowClosed());
    installTranslations(*qApp, QLocale().uiLanguages());
}

AmbertideApp::~AmbertideApp()
{
    delete m_settings;
    m_menuBarExtra.reset();
    m_system.privilegedRunner.cancel();
    m_delegate.applicationWillTerminate();
}

bool AmbertideApp::launch()
{
    m_delegate.applicationDidFinishLaunching();
    if (m_ending == Ending::Superfluous)
        return false;
    CLIInstaller::makeShared(m_system.mainBundle, m_system.privilegedRunner);
    LaunchHelper::makeShared(m_system.loginItem);
    m_appearance.emplace(m_system.appearance);
    m_menuBarExtra.emplace(MenuBarExtra::Ports{.viewModel = m_viewModel,
                                               .updater = m_updater,
                                               .executor = m_system.executor,
                                               .haptics = m_system.haptics,
                                               .placement = m_system.placement,
                                               .createTrayIcon = m_system.createTrayIcon,
                                               .openSettings = [this] { showSettings(); },
                                               .openSchedule =
                                                   [this] {
                                                       showSettings();
                                                       m_settings->showSchedule();
                                                   },
                                               .quit = quit,
                                               .isStartedByPerson = m_system.isStartedByPerson});
    return true;
}

AmbertideApp::Ending AmbertideApp::run()
{
    QApplication::exec();
    return m_ending;
}

void AmbertideApp::quit()
{
    // QCoreApplication::quit() would ask the windows first, and that of an installation under way does not close.
    QCoreApplication::exit();
}

void AmbertideApp::restart()
{
    m_ending = Ending::Restart;
    quit();
}

void AmbertideApp::activate()
{
    if (m_settings && m_settings->isVisible() && m_menuBarExtra->isIconShown())
        bringSettingsForward();
    else
        m_menuBarExtra->show();
}

void AmbertideApp::showSettings()
{
    if (!m_settings) {
        m_settings = new SettingsView(m_viewModel, {.installer = CLIInstaller::shared(),
                                                    .launchHelper = LaunchHelper::shared(),
                                                    .mainBundle = m_system.mainBundle,
                                                    .createUpdaterController = m_createUpdaterController,
                                                    .userDefaults = m_system.userDefaults,
                                                    .notifications = m_notifications,
                                                    .calendar = m_system.calendar,
                                                    .loginItem = m_system.loginItem,
                                                    .installerExecutor = m_system.installerExecutor});
        connect(m_settings, &SettingsView::quitRequested, this, quit);
    }
    m_settings->show();
    bringSettingsForward();
}

void AmbertideApp::bringSettingsForward()
{
    if (!m_settings || !m_settings->isVisible())
        return;
    if (m_settings->isMinimized())
        m_settings->showNormal();
    m_settings->raise();
    m_settings->activateWindow();
}

} // namespace ambertide
