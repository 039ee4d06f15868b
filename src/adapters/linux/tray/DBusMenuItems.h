#pragma once

#include "base/UserInfo.h"
#include "ports/TrayIcon.h"

#include <cstdint>
#include <vector>

namespace ambertide {

/// The entries of a menu of one level as `com.canonical.dbusmenu` has them: numbered, below a root. Numbers go on
/// through replacements, so that a host which still shows former entries cannot hit others.
class DBusMenuItems
{
public:
    static constexpr std::int32_t root = 0;

    /// Numbers are kept when the texts are the same: false then, and only states have changed.
    bool replace(std::vector<TrayMenuItem> items);

    bool has(std::int32_t identifier) const { return identifier == root || find(identifier) != nullptr; }
    /// Null for the root and for unknown numbers.
    const TrayMenuItem *find(std::int32_t identifier) const;
    /// Of the entries, in their order.
    std::vector<std::int32_t> identifiers() const;
    /// By the names of the interface. None for unknown numbers.
    UserInfo properties(std::int32_t identifier) const;

private:
    std::vector<TrayMenuItem> m_items;
    std::int32_t m_first = root + 1;
};

} // namespace ambertide
