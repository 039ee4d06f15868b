#pragma once

#include "adapters/linux/bus/SdBus.h"
#include "base/Notification.h"

#include <optional>
#include <string>
#include <string_view>

/// The one codec of the signal that carries a notification between processes: `Posted(s name, a{sv} userInfo)`.
namespace ambertide::posted_signal {

/// The match rule for posts under this name, by the connection with the unique name `sender`, or by anybody when that
/// is empty.
std::string matchRule(std::string_view name, std::string_view sender = {});

/// Null when the notification cannot be put on the bus, because it contains text that is not UTF-8. Opaque values are
/// left out.
SdBusMessage encode(sd_bus *bus, const Notification &notification);

/// Nothing when the message is malformed or too large to read. Entries beyond the limits of SdBusReader are left out,
/// but never the one with the key "temperature". An empty dictionary counts as no user info.
std::optional<Notification> decode(sd_bus_message *message);

} // namespace ambertide::posted_signal
