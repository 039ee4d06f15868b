#pragma once

#include "adapters/linux/bus/SdBus.h"
#include "ports/TrayIcon.h"

#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

namespace ambertide {

/// The entries of a menu of one level as `com.canonical.dbusmenu` has them: numbered, below a root. Numbers go on
/// through replacements, so that what a host still shows of former entries is unknown.
class DBusMenuItems
{
public:
    static constexpr std::int32_t root = 0;
    /// Entries beyond are left out.
    static constexpr std::size_t mostItems = 256;

    /// Numbers are kept when the texts are the same: false then, and only states have changed.
    bool replace(std::vector<TrayMenuItem> items);

    bool has(std::int32_t identifier) const { return identifier == root || find(identifier) != nullptr; }
    /// Null for the root and for unknown numbers.
    const TrayMenuItem *find(std::int32_t identifier) const;

    /// `(ia{sv}av)`, of an entry or the root.
    void appendLayout(sd_bus_message *message, std::int32_t parent, std::int32_t depth) const;
    /// `a(ia{sv})`, of the root and the entries that are wanted.
    void appendGroup(sd_bus_message *message, const std::function<bool(std::int32_t)> &isWanted) const;
    bool hasProperty(std::int32_t identifier, std::string_view name) const;
    /// `v`, of a property that there is.
    void appendProperty(sd_bus_message *message, std::int32_t identifier, std::string_view name) const;

private:
    void appendProperties(sd_bus_message *message, std::int32_t identifier) const;

    std::vector<TrayMenuItem> m_items;
    std::int32_t m_first = root + 1;
};

} // namespace ambertide
