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

    /// Switches an item that was switched off on again. Returns why it failed, a text for a person; nothing on success.
    [[nodiscard]] virtual std::optional<std::string> registerItem() = 0;

    /// As above. That nothing was registered is a failure.
    [[nodiscard]] virtual std::optional<std::string> unregisterItem() = 0;
};

} // namespace ambertide
