#pragma once

#include "platform/LoginItem.h"

#include <optional>
#include <string>

namespace ambertide {

/// Keeps its status in memory and notes the calls that change it, "+" and "-". Either answers with a failure once set.
class FakeLoginItem final : public LoginItem
{
public:
    LoginItemStatus status() const override { return currentStatus; }
    std::optional<std::string> registerItem() override
    {
        calls += '+';
        currentStatus = registerFailure ? currentStatus : LoginItemStatus::Enabled;
        return registerFailure;
    }
    std::optional<std::string> unregisterItem() override
    {
        calls += '-';
        currentStatus = unregisterFailure ? currentStatus : LoginItemStatus::NotRegistered;
        return unregisterFailure;
    }

    LoginItemStatus currentStatus = LoginItemStatus::NotRegistered;
    std::optional<std::string> registerFailure;
    std::optional<std::string> unregisterFailure;
    std::string calls;
};

} // namespace ambertide
