#pragma once

#include "app/MenuBarExtra.h"
#include "ui/AppearanceFollower.h"
#include "ui/settings/SettingsView.h"

#include <QObject>
#include <QPointer>

#include <functional>

namespace ambertide {

/// What people see of the running application: the icon with its panel, and the Settings window while it is open. Main
/// thread; made once the application is known to be the only one.
class AppScenes final : public QObject
{
    Q_OBJECT

public:
    /// All of it must outlive the scenes.
    struct Ports
    {
        AppViewModel &viewModel;
        SparkleUpdater &updater;
        TaskExecutor &executor;
        Appearance &appearance;
        HapticPerformer &haptics;
        PanelPlacement &placement;
        MenuBarExtra::TrayIconFactory createTrayIcon;
        SettingsView::Ports settings;
        std::function<void()> quit;
    };

    explicit AppScenes(Ports ports);
    ~AppScenes() override;

    /// The application was started again: brings the Settings window forward, or else opens the panel as a window.
    void activate();
    /// Opens the Settings window, or brings it to the front.
    void showSettings();
    /// Brings the Settings window to the front when there is one.
    void bringSettingsForward();

private:
    Ports m_ports;
    AppearanceFollower m_appearance;
    MenuBarExtra m_menuBarExtra;
    QPointer<SettingsView> m_settings;
};

} // namespace ambertide
