#pragma once

#include "base/TaskExecutor.h"
#include "integration/SparkleUpdater.h"
#include "model/SettingsViewModel.h"

#include <QPointer>
#include <QWidget>

#include <optional>
#include <string>

namespace ambertide {

class AboutView;
class CLIInstaller;
class CommandLineToolView;
class LaunchHelper;
class MainBundle;
class SwitchRow;

/// The General tab: what the program is, how it starts and updates itself, and its command-line tool.
class GeneralSettingsView final : public QWidget
{
    Q_OBJECT

public:
    /// What the tab works on; all of it must outlive the tab, and the installer its executor as well.
    struct Ports
    {
        CLIInstaller &installer;
        LaunchHelper &launchHelper;
        const MainBundle &mainBundle;
        const UpdaterControllerFactory &createUpdaterController; ///< needed for construction alone
        UserDefaults &userDefaults;
        TaskExecutor &installerExecutor; ///< held up for as long as a prompt is open: nothing else may run on it
    };

    GeneralSettingsView(SettingsViewModel &viewModel, const Ports &ports);

    /// Whether the tool is being installed or uninstalled, which may wait for a person.
    bool isProcessing() const { return m_isProcessing; }

Q_SIGNALS:
    void processingEnded();

private:
    void refresh();
    void installOrUninstall();
    void finish(bool wasInstalled, const std::optional<std::string> &error);
    void setProcessing(bool isProcessing);

    SettingsViewModel &m_viewModel;
    CLIInstaller &m_installer;
    TaskExecutor &m_installerExecutor;
    SparkleUpdater m_sparkleUpdater;
    Observation m_updaterObservation;
    bool m_cliInstalled;
    bool m_isProcessing = false;
    QPointer<QWidget> m_formerFocus;    ///< before the tab was disabled
    QPointer<QWidget> m_focusMeanwhile; ///< where it went then; elsewhere it is by the user's will
    AboutView *m_about = nullptr;
    SwitchRow *m_launchAtLogin = nullptr;
    SwitchRow *m_automaticallyCheckForUpdates = nullptr;
    CommandLineToolView *m_commandLineTool = nullptr;
};

} // namespace ambertide
