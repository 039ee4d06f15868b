#pragma once

#include "adapters/linux/bus/DBusSession.h"
#include "adapters/linux/tray/DBusMenuItems.h"

#include <cstdint>
#include <vector>

namespace ambertide {

/// A one-level menu that the desktop's panel draws: exported through the interface `com.canonical.dbusmenu`. Main
/// thread.
class DBusMenuObject
{
public:
    /// The path of the exported object.
    static constexpr char path[] = "/MenuBar";

    /// `session` must outlive this.
    explicit DBusMenuObject(DBusSession &session);
    DBusMenuObject(const DBusMenuObject &) = delete;
    DBusMenuObject &operator=(const DBusMenuObject &) = delete;

    /// A click on a former item that a host still shows does nothing, unless all texts are the same as before.
    void setItems(std::vector<TrayMenuItem> items);

private:
    struct Members;

    void sendLayoutUpdated();
    void sendStates();
    void activate(std::int32_t identifier);

    DBusSession &m_session;
    DBusMenuItems m_items;
    std::uint32_t m_revision = 1;
    Observation m_object;
};

} // namespace ambertide
