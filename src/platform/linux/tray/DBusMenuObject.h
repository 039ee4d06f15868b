#pragma once

#include "platform/TrayIcon.h"
#include "platform/linux/DBusSession.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace ambertide {

/// A menu of one level that the desktop's panel draws: exported by the interface `com.canonical.dbusmenu`. Main thread.
class DBusMenuObject
{
public:
    /// Absolute, in the manner of D-Bus.
    static constexpr char path[] = "/MenuBar";

    /// `session` must outlive this.
    explicit DBusMenuObject(DBusSession &session);
    DBusMenuObject(const DBusMenuObject &) = delete;
    DBusMenuObject &operator=(const DBusMenuObject &) = delete;

    /// What a host still shows of the former items does nothing, unless their texts are the same.
    void setItems(std::vector<TrayMenuItem> items);

private:
    struct Methods;

    const TrayMenuItem *find(std::int32_t identifier) const;
    void activate(std::int32_t identifier);

    DBusSession &m_session;
    std::vector<TrayMenuItem> m_items;
    std::int32_t m_firstIdentifier = 1;
    std::uint32_t m_revision = 1;
    Observation m_object;
};

} // namespace ambertide
