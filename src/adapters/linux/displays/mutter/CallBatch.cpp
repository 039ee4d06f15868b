#include "adapters/linux/displays/mutter/CallBatch.h"

#include <algorithm>

namespace ambertide {

namespace {

int keepReply(sd_bus_message *reply, void *context, sd_bus_error *)
{
    static_cast<SdBusMessage *>(context)->reset(sd_bus_message_ref(reply));
    return 0;
}

} // namespace

std::vector<SdBusMessage> callTogether(sd_bus *bus, const std::vector<SdBusMessage> &calls, SdBusDeadline deadline)
{
    std::vector<SdBusMessage> replies(calls.size());
    std::vector<SdBusSlot> slots;
    for (std::size_t i = 0; i < calls.size(); ++i) {
        sd_bus_slot *slot = nullptr;
        if (calls[i] && sd_bus_call_async(bus, &slot, calls[i].get(), keepReply, &replies[i], 0) >= 0)
            slots.emplace_back(slot);
    }
    const auto isDone = [&] {
        const auto count = std::ranges::count_if(replies, [](const auto &reply) { return reply != nullptr; });
        return static_cast<std::size_t>(count) == slots.size();
    };
    processUntil(bus, deadline, isDone);
    return replies;
}

bool enterProperty(sd_bus_message *reply, const char *type)
{
    return reply && sd_bus_message_is_method_error(reply, nullptr) == 0 &&
           sd_bus_message_enter_container(reply, 'v', type) > 0;
}

SdBusMessage getProperty(sd_bus *bus, const char *service, const char *path, const char *interface, const char *name)
{
    sd_bus_message *message = nullptr;
    sd_bus_message_new_method_call(bus, &message, service, path, "org.freedesktop.DBus.Properties", "Get");
    SdBusMessage call(message);
    if (!call || sd_bus_message_set_auto_start(message, 0) < 0 ||
        sd_bus_message_append(message, "ss", interface, name) < 0)
        return nullptr;
    return call;
}

} // namespace ambertide
