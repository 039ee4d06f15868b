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
/// Where no watcher is on the bus, the tray of the X server is used after a moment; a watcher that comes later takes
/// over. A desktop that is starting, or restarting its panel, is given longer to bring up either. Where there is
/// neither, one line says how to open the panel.
class DesktopTrayIcon final : public TrayIcon
{
public:
    using MakeFallback = std::function<std::unique_ptr<TrayIcon>(const TrayArtwork &, Callbacks)>;

    struct Patience
    {
        std::chrono::milliseconds beforeFallback; ///< how long to wait for a watcher
        std::chrono::milliseconds beforeNowhere;  ///< how long to wait for any tray
    };
    static constexpr Patience defaultPatience{std::chrono::milliseconds(500), std::chrono::seconds(5)};

    /// `session` must outlive this. `iconsFolder`: see TrayArtwork. No callback is called before this has returned.
    DesktopTrayIcon(DBusSession &session, std::filesystem::path iconsFolder, Callbacks callbacks);
    /// For tests: with another fallback and patience.
    DesktopTrayIcon(DBusSession &session, std::filesystem::path iconsFolder, Callbacks callbacks,
                    MakeFallback makeFallback, Patience patience);

    Presence presence() const override { return m_presence; }
    void setMenu(std::vector<TrayMenuItem> items) override;
    void setToolTip(std::string text) override;

private:
    void followItem();
    void fallBack();
    void followFallback();
    void setPresence(Presence presence);

    const TrayArtwork m_artwork;
    const Callbacks m_callbacks;
    const MakeFallback m_makeFallback;
    std::vector<TrayMenuItem> m_menu;
    std::string m_toolTip;
    Presence m_presence = Presence::Pending;
    bool m_isReady = false;
    bool m_hasExplained = false;
    QTimer m_untilFallback;
    QTimer m_untilNowhere;
    std::unique_ptr<TrayIcon> m_fallback;
    StatusNotifierItem m_item;
};

} // namespace ambertide
