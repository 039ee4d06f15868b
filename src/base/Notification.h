#pragma once

#include "base/UserInfo.h"

#include <functional>
#include <optional>
#include <string>

namespace ambertide {

/// A posted notification, as its observers receive it. It does not say who posted it.
struct Notification
{
    std::string name;
    std::optional<UserInfo> userInfo;
};

using NotificationHandler = std::function<void(const Notification &)>;

} // namespace ambertide
