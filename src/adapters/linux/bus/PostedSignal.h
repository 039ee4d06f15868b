#pragma once

#include "adapters/linux/bus/SdBus.h"
#include "base/Notification.h"

#include <optional>
#include <string>
#include <string_view>

/// The one codec of the signal that carries a notification between processes: `Posted(s name, a{sv} userInfo)`.
namespace ambertide::posted_signal {

/// The rule that finds the posts of one name, of one connection (its unique name) or of anybody when `sender` is empty.
std::string matchRule(std::string_view name, std::string_view sender = {});

/// Null when the notification cannot be put on the bus (a text that is no UTF-8). Opaque values are left out.
SdBusMessage encode(sd_bus *bus, const Notification &notification);

/// Nothing when the message is malformed or too large to go through. What is beyond the limits of SdBusReader is left
/// out, but never the value of the key "temperature". An empty dictionary is no user info.
std::optional<Notification> decode(sd_bus_message *message);

} // namespace ambertide::posted_signal
