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
    std::string text; ///< UTF-8, in the user's language, without mnemonics; empty for a separator
    bool isEnabled = true;
    std::function<void()> activate;
};

/// Port: the application's icon among the status icons of the desktop's panel. Main thread, also for the callbacks,
/// which must not run an event loop of their own. Destroying the object removes the icon.
class TrayIcon
{
public:
    enum class Presence {
        Pending, ///< the desktop may still be starting
        Shown,
        Nowhere ///< the desktop shows no such icons; if it begins to, this one appears and the presence changes
    };

    struct Callbacks
    {
        /// A click, or Return on the icon. `place` is its position on the desktop in logical pixels, if that is known.
        std::function<void(std::optional<QPoint> place)> activated;
        std::function<void()> presenceChanged;
    };

    virtual ~TrayIcon() = default;

    virtual Presence presence() const = 0;
    /// Replaces the context menu, even while it is open. Where a click can only open the menu, an entry is put first
    /// that does what a click does elsewhere.
    virtual void setMenu(std::vector<TrayMenuItem> items) = 0;
    /// One line of UTF-8, shown with the application's name.
    virtual void setToolTip(std::string text) = 0;
};

/// Creates an icon, which the desktop may show some time later.
using TrayIconFactory = std::function<std::unique_ptr<TrayIcon>(TrayIcon::Callbacks)>;

} // namespace ambertide
