#pragma once

#include "adapters/linux/bus/SdBus.h"

#include <vector>

namespace ambertide {

/// Calls that are made at one time, which takes the time of the slowest of them.
class CallBatch
{
public:
    /// Sends the calls, on a connection that is ready and outlives this; some may be null.
    CallBatch(sd_bus *bus, const std::vector<SdBusMessage> &calls);
    CallBatch(const CallBatch &) = delete;
    CallBatch &operator=(const CallBatch &) = delete;

    /// Waits for the replies until the deadline, and handles other messages that come meanwhile. For each call its
    /// reply, which may be an error; null where there was no call or no reply yet.
    const std::vector<SdBusMessage> &wait(SdBusDeadline deadline);

private:
    sd_bus *const m_bus;
    std::vector<SdBusMessage> m_replies;
    std::vector<SdBusSlot> m_slots; ///< of those that were sent
};

bool isError(const SdBusMessage &reply);

/// Asks for a property; the service is not started for that.
SdBusMessage getProperty(sd_bus *bus, const char *service, const char *path, const char *interface, const char *name);

/// Goes on to the value in the reply to that. False when it is none of that type.
bool enterProperty(const SdBusMessage &reply, const char *type);

} // namespace ambertide
