#pragma once

#include "base/UserInfo.h"

#include <functional>
#include <optional>
#include <string>

namespace ambertide {

/// One post, as its observers see it. The sender is never told.
struct Notification
{
    std::string name;
    std::optional<UserInfo> userInfo;
};

using NotificationHandler = std::function<void(const Notification &)>;

} // namespace ambertide
