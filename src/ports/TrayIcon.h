#pragma once

#include <QPoint>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ambertide {

/// One line of the tray icon's context menu.
struct TrayMenuItem
{
    std::string text; ///< UTF-8, in the user's language, without mnemonics; empty for a separating line
    bool isEnabled = true;
    std::function<void()> activate;
};

/// Port: the application's icon among the status icons of the desktop's panel. Main thread, callbacks as well: they
/// must not run an event loop of their own. The icon goes with the object.
class TrayIcon
{
public:
    enum class Presence {
        Pending, ///< the desktop may still be starting
        Shown,
        Nowhere ///< the desktop has no place for it; one that comes up later is taken, and the presence changes
    };

    struct Callbacks
    {
        /// A click, or Return on the icon. `place` is where on the desktop, in logical pixels, if the panel tells.
        std::function<void(std::optional<QPoint> place)> activated;
        std::function<void()> presenceChanged;
    };

    virtual ~TrayIcon() = default;

    virtual Presence presence() const = 0;
    /// Replaces the context menu, also while it is open. Where the desktop lets a click do nothing but open the menu,
    /// an entry before these does what a click would.
    virtual void setMenu(std::vector<TrayMenuItem> items) = 0;
    /// One line, UTF-8, beside the application's name.
    virtual void setToolTip(std::string text) = 0;
};

/// Creates an icon, which the desktop may show some time later.
using TrayIconFactory = std::function<std::unique_ptr<TrayIcon>(TrayIcon::Callbacks)>;

} // namespace ambertide
