#pragma once

#include "integration/SparkleUpdater.h"
#include "model/AppViewModel.h"
#include "ports/HapticPerformer.h"
#include "ports/PanelPlacement.h"
#include "ports/TrayIcon.h"

#include <QObject>
#include <QPointer>

#include <functional>
#include <memory>

namespace ambertide {

class MenuBarView;
class PanelWindow;

/// The icon among the desktop's status icons, the panel that it opens, and its menu. The panel exists only while it is
/// open. Opening it writes the tint once more; closing it does so half a second and two seconds later. Main thread.
class MenuBarExtra final : public QObject
{
    Q_OBJECT

public:
    /// All of it must outlive this.
    struct Ports
    {
        AppViewModel &viewModel;
        SparkleUpdater &updater;
        TaskExecutor &executor;
        HapticPerformer &haptics;
        PanelPlacement &placement;
        TrayIconFactory createTrayIcon;
        std::function<void()> openSettings;
        std::function<void()> openSchedule;
        std::function<void()> quit;
        bool isStartedByPerson = true; ///< then the panel opens by itself where no icon can be shown
    };

    explicit MenuBarExtra(Ports ports);
    ~MenuBarExtra() override;

    /// Whether there is an icon to open the panel with.
    bool isIconShown() const { return m_icon->presence() == TrayIcon::Presence::Shown; }
    /// The icon was clicked: opens the panel beside it, or closes it. `place`: see TrayIcon.
    void toggle(std::optional<QPoint> place);
    /// The application was started again: opens the panel where a click would, or brings it to the front. If there is
    /// no icon even after a moment, the panel is an ordinary window.
    void show();

private:
    void followPresence();
    void showNow();
    void explain();
    void open(PanelPlacement::Manner manner, std::optional<QPoint> place);
    void panelClosed();
    void forgetClosing();
    void reapplyIfTinted();
    Task onMainAfter(std::chrono::nanoseconds delay, void (MenuBarExtra::*action)());
    void updateMenu();
    void updateToolTip();

    Ports m_ports;
    std::unique_ptr<TrayIcon> m_icon;
    QPointer<PanelWindow> m_panel;
    QPointer<MenuBarView> m_view;  ///< in it
    std::optional<QPoint> m_place; ///< of the last click
    bool m_isWanted = false;       ///< the panel is to open as soon as it is known where
    bool m_hasBeenSeen = false;    ///< the icon or the panel has been on the screen
    bool m_hasExplained = false;
    bool m_hasJustClosed = false;         ///< maybe by a press on the icon that has not reached the icon yet
    bool m_wasButtonHeld = false;         ///< when forgetClosing() last looked
    Task m_justClosed;                    ///< resets m_hasJustClosed
    std::shared_ptr<MenuBarExtra> m_self; ///< owns nothing; tasks hold it weakly and lock it on the main thread
    Observation m_updaterObservation;
};

} // namespace ambertide
