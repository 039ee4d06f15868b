#pragma once

#include <optional>
#include <string>

namespace ambertide {

enum class LoginItemStatus {
    NotRegistered,
    Enabled,
    RequiresApproval, ///< registered, but switched off outside of this application
    NotFound          ///< something is registered that the system cannot start
};

/// Port: has the system start this application when the user logs in. Main thread; every call asks or changes the
/// system itself and returns at once.
class LoginItem
{
public:
    virtual ~LoginItem() = default;

    virtual LoginItemStatus status() const = 0;

    /// Also switches on an item that was switched off. On failure returns the reason as a readable text.
    [[nodiscard]] virtual std::optional<std::string> registerItem() = 0;

    /// Returns the same. It is a failure if nothing was registered.
    [[nodiscard]] virtual std::optional<std::string> unregisterItem() = 0;
};

} // namespace ambertide
