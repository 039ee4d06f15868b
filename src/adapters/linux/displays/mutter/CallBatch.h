#pragma once

#include "adapters/linux/bus/SdBus.h"

#include <vector>

namespace ambertide {

/// Makes calls at one time, which takes the time of the slowest of them, and waits for the replies until the deadline.
/// Each call's reply, which may be an error; null where there was no call or no reply. The connection has to be ready.
/// Other messages that come meanwhile are handled, too.
std::vector<SdBusMessage> callTogether(sd_bus *bus, const std::vector<SdBusMessage> &calls, SdBusDeadline deadline);

/// The value of a property as a reply, positioned inside its variant. Null when the reply is none of that type.
bool enterProperty(sd_bus_message *reply, const char *type);

/// Asks for a property; the service is not started for that.
SdBusMessage getProperty(sd_bus *bus, const char *service, const char *path, const char *interface, const char *name);

} // namespace ambertide
