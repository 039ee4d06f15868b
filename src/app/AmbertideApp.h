#pragma once

#include "app/AppDelegate.h"
#include "app/MenuBarExtra.h"
#include "integration/SparkleUpdater.h"
#include "model/AppViewModel.h"
#include "ports/SystemPorts.h"
#include "ui/AppearanceFollower.h"

#include <QObject>
#include <QPointer>

#include <memory>
#include <optional>

namespace ambertide {

class SettingsView;

/// The application: creates the model, the updater and the delegate, in this order, over the ports of the system it
/// runs on, and then what is seen of it: the icon with its panel and, while it is open, the Settings window. Main
/// thread. Destroying it gives the displays back, in the background.
class AmbertideApp final : public QObject
{
    Q_OBJECT

public:
    enum class Ending {
        Quit,
        Superfluous, ///< another copy runs
        Restart      ///< an update has been installed
    };

    explicit AmbertideApp(SystemPorts system);
    ~AmbertideApp() override;

    /// Starts the delegate and shows the icon. False, and nothing is shown, when another copy runs: the displays are
    /// that copy's, so this process must end without giving them back.
    bool launch();
    /// Runs the event loop until somebody quits.
    Ending run();
    /// Ends run(), even if windows are open that refuse to close.
    static void quit();

    AppViewModel &viewModel() { return m_viewModel; }

    /// The application was started again: brings the Settings window forward, or else opens the panel.
    void activate();
    /// Opens the Settings window, or brings it to the front.
    void showSettings();
    void checkForUpdates() { m_updater.checkForUpdates(); }

private:
    void restart();
    void bringSettingsForward();

    SystemPorts m_system;
    NotificationCenter m_notifications;
    UpdaterControllerFactory m_createUpdaterController;
    AppViewModel m_viewModel;
    SparkleUpdater m_updater;
    AppDelegate m_delegate;
    std::optional<AppearanceFollower> m_appearance;
    std::optional<MenuBarExtra> m_menuBarExtra;
    QPointer<SettingsView> m_settings;
    Ending m_ending = Ending::Quit;
};

} // namespace ambertide
