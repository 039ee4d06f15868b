#pragma once

#include "base/UserInfo.h"
#include "ports/TrayIcon.h"

#include <cstdint>
#include <vector>

namespace ambertide {

/// The entries of a one-level menu, in the terms of `com.canonical.dbusmenu`: numbered, below a root. Numbers are never
/// used again after a replacement, so that a click in a host that still shows former entries cannot hit others.
class DBusMenuItems
{
public:
    static constexpr std::int32_t root = 0;

    /// When all texts are the same as before, keeps the numbers and returns false: only states can have changed.
    bool replace(std::vector<TrayMenuItem> items);

    bool has(std::int32_t identifier) const { return identifier == root || find(identifier) != nullptr; }
    /// Null for the root and for unknown numbers.
    const TrayMenuItem *find(std::int32_t identifier) const;
    /// The numbers of the entries, in order.
    std::vector<std::int32_t> identifiers() const;
    /// An entry's properties by the names of the interface. None for unknown numbers.
    UserInfo properties(std::int32_t identifier) const;

private:
    std::vector<TrayMenuItem> m_items;
    std::int32_t m_first = root + 1;
};

} // namespace ambertide
