#pragma once

#include "adapters/linux/tray/StatusNotifierItem.h"

#include <QTimer>

#include <chrono>
#include <filesystem>
#include <memory>

namespace ambertide {

/// The tray icon, wherever the desktop has a place for one: a StatusNotifierItem while a watcher is on the bus, else an
/// icon embedded by an X11 tray. Main thread.
///
/// A desktop that starts, or restarts its panel, is given a moment to bring its watcher up. A watcher that comes later
/// is preferred, too. Where there is neither, one line says how the panel is reached.
class DesktopTrayIcon final : public TrayIcon
{
public:
    using MakeFallback = std::function<std::unique_ptr<TrayIcon>(const TrayArtwork &, Callbacks)>;

    static constexpr std::chrono::seconds defaultPatience{5};

    /// `session` must outlive this. `iconsFolder`: see TrayArtwork. No callback is called before this has returned.
    DesktopTrayIcon(DBusSession &session, std::filesystem::path iconsFolder, Callbacks callbacks);
    /// For tests: with another fallback and patience.
    DesktopTrayIcon(DBusSession &session, std::filesystem::path iconsFolder, Callbacks callbacks,
                    MakeFallback makeFallback, std::chrono::milliseconds patience);

    Presence presence() const override { return m_presence; }
    void setMenu(std::vector<TrayMenuItem> items) override;
    void setToolTip(std::string text) override;

private:
    void followItem();
    void fallBack();
    void setPresence(Presence presence);

    const TrayArtwork m_artwork;
    const Callbacks m_callbacks;
    const MakeFallback m_makeFallback;
    std::vector<TrayMenuItem> m_menu;
    std::string m_toolTip;
    Presence m_presence = Presence::Pending;
    bool m_isReady = false;
    bool m_hasExplained = false;
    QTimer m_patience;
    std::unique_ptr<TrayIcon> m_fallback;
    StatusNotifierItem m_item;
};

} // namespace ambertide
