#pragma once

#include "adapters/linux/bus/SdBus.h"

#include <vector>

namespace ambertide {

/// Several calls made in parallel, so that waiting for all of them takes only as long as the slowest.
class CallBatch
{
public:
    /// Sends the calls, leaving out null ones. The connection must be ready and must outlive this.
    CallBatch(sd_bus *bus, const std::vector<SdBusMessage> &calls);
    CallBatch(const CallBatch &) = delete;
    CallBatch &operator=(const CallBatch &) = delete;

    /// Waits for the replies until the deadline, handling other messages that arrive meanwhile. Returns the reply to
    /// each call, which may be an error; null where there was no call or no reply in time.
    const std::vector<SdBusMessage> &wait(SdBusDeadline deadline);

private:
    sd_bus *const m_bus;
    std::vector<SdBusMessage> m_replies;
    std::vector<SdBusSlot> m_slots; ///< of the calls that were sent
};

bool isError(const SdBusMessage &reply);

/// The call that asks for a property, without having the bus start the service. Null when it cannot be made.
SdBusMessage getProperty(sd_bus *bus, const char *service, const char *path, const char *interface, const char *name);

/// Enters the variant in the reply to that call. False when there is no reply, or no value of this type.
bool enterProperty(const SdBusMessage &reply, const char *type);

} // namespace ambertide
