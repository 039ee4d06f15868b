#pragma once

#include "base/TaskExecutor.h"
#include "integration/SparkleUpdater.h"
#include "model/SettingsViewModel.h"

#include <QPointer>
#include <QWidget>

#include <optional>

namespace ambertide {

class AboutView;
class CLIInstaller;
class CommandLineToolView;
class LaunchHelper;
class MainBundle;
class SwitchRow;

/// What the Settings window works on; all of it must outlive the window.
struct SettingsPorts
{
    CLIInstaller &installer;
    LaunchHelper &launchHelper;
    const MainBundle &mainBundle;
    UpdaterControllerFactory createUpdaterController;
    UserDefaults &userDefaults;
    NotificationCenter &notifications;
    const Calendar &calendar;
    const LoginItem &loginItem;
    /// For the installer alone, whose administrator prompt holds up everything else on it. The prompt may outlast the
    /// window; at the end of the process it is withdrawn, and then the executor is destroyed, before the installer.
    TaskExecutor &installerExecutor;
};

/// The General tab: what the program is, how it starts and updates itself, and its command-line tool.
class GeneralSettingsView final : public QWidget
{
    Q_OBJECT

public:
    GeneralSettingsView(SettingsViewModel &viewModel, const SettingsPorts &ports);

    /// Whether the tool is being installed or uninstalled, which may wait for the user.
    bool isProcessing() const { return m_isProcessing; }

Q_SIGNALS:
    void processingEnded();

private:
    void refresh();
    void installOrUninstall();
    void finish(bool wasInstalled, const std::optional<QString> &error);
    void setProcessing(bool isProcessing);

    SettingsViewModel &m_viewModel;
    CLIInstaller &m_installer;
    TaskExecutor &m_installerExecutor;
    SparkleUpdater m_sparkleUpdater;
    Observation m_updaterObservation;
    bool m_cliInstalled;
    bool m_isProcessing = false;
    QPointer<QWidget> m_formerFocus;    ///< what had the focus before the tab was disabled
    QPointer<QWidget> m_focusMeanwhile; ///< what got it then; if it is elsewhere, the user has moved it
    AboutView *m_about = nullptr;
    SwitchRow *m_launchAtLogin = nullptr;
    SwitchRow *m_automaticallyCheckForUpdates = nullptr;
    CommandLineToolView *m_commandLineTool = nullptr;
};

} // namespace ambertide
