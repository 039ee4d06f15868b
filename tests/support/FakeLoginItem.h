#pragma once

#include "platform/LoginItem.h"

#include <optional>
#include <string>
#include <vector>

namespace ambertide {

/// Keeps its status in memory and notes the calls that change it: "register", "unregister". A failure that is set is
/// what that call answers, and changes nothing.
class FakeLoginItem final : public LoginItem
{
public:
    LoginItemStatus status() const override { return currentStatus; }

    std::optional<std::string> registerItem() override
    {
        calls.emplace_back("register");
        if (!registerFailure)
            currentStatus = LoginItemStatus::Enabled;
        return registerFailure;
    }

    std::optional<std::string> unregisterItem() override
    {
        calls.emplace_back("unregister");
        if (unregisterFailure)
            return unregisterFailure;
        if (currentStatus == LoginItemStatus::NotRegistered)
            return "not registered";
        currentStatus = LoginItemStatus::NotRegistered;
        return {};
    }

    LoginItemStatus currentStatus = LoginItemStatus::NotRegistered;
    std::optional<std::string> registerFailure;
    std::optional<std::string> unregisterFailure;
    std::vector<std::string> calls;
};

} // namespace ambertide
