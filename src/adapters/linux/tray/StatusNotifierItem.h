#pragma once

#include "adapters/linux/bus/DBusSession.h"
#include "adapters/linux/tray/DBusMenuObject.h"
#include "adapters/linux/tray/TrayArtwork.h"
#include "ports/TrayIcon.h"

#include <string>
#include <vector>

namespace ambertide {

/// The icon that a panel draws for us: exported through the interface `org.kde.StatusNotifierItem`, and registered with
/// the watcher `org.kde.StatusNotifierWatcher` whenever that comes up.
///
/// Main thread. Presence: Pending while the watcher has not answered, however long; Nowhere while none is on the bus,
/// or when it has answered with an error.
class StatusNotifierItem final : public TrayIcon
{
public:
    /// What the panel does with a plain click.
    enum class Click {
        Activates,
        OpensMenu ///< then the menu begins with an entry that activates
    };

    /// `session` must outlive this. The name is shown to the user.
    StatusNotifierItem(DBusSession &session, TrayArtwork artwork, std::string name, Click click, Callbacks callbacks);
    StatusNotifierItem(const StatusNotifierItem &) = delete;
    StatusNotifierItem &operator=(const StatusNotifierItem &) = delete;

    Presence presence() const override { return m_presence; }
    void setMenu(std::vector<TrayMenuItem> items) override;
    void setToolTip(std::string text) override;

private:
    struct Members;

    void announce();
    void noteRegistration(sd_bus_message *reply);
    void setPresence(Presence presence);
    void emitSignal(const char *member);

    DBusSession &m_session;
    const TrayArtwork m_artwork;
    const std::string m_name;
    const std::string m_busName;
    const Click m_click;
    const Callbacks m_callbacks;
    std::string m_toolTip;
    std::vector<QImage> m_images; ///< drawn when first asked for
    Presence m_presence;
    DBusMenuObject m_menu;
    Observation m_object;
    Observation m_ownedName;
    Observation m_watcherChanges;
    Observation m_registration;
};

} // namespace ambertide
