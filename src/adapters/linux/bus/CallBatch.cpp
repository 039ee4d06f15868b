#include "adapters/linux/bus/CallBatch.h"

#include <algorithm>

namespace ambertide {

namespace {

int keepReply(sd_bus_message *reply, void *context, sd_bus_error *)
{
    static_cast<SdBusMessage *>(context)->reset(sd_bus_message_ref(reply));
    return 0;
}

} // namespace

CallBatch::CallBatch(sd_bus *bus, const std::vector<SdBusMessage> &calls) : m_bus(bus), m_replies(calls.size())
{
    for (std::size_t i = 0; i < calls.size(); ++i) {
        sd_bus_slot *slot = nullptr;
        if (calls[i] && sd_bus_call_async(bus, &slot, calls[i].get(), keepReply, &m_replies[i], 0) >= 0)
            m_slots.emplace_back(slot);
    }
}

const std::vector<SdBusMessage> &CallBatch::wait(SdBusDeadline deadline)
{
    const auto isDone = [this] {
        const auto count = std::ranges::count_if(m_replies, [](const auto &reply) { return reply != nullptr; });
        return static_cast<std::size_t>(count) == m_slots.size();
    };
    processUntil(m_bus, deadline, isDone);
    return m_replies;
}

bool isError(const SdBusMessage &reply) { return reply && sd_bus_message_is_method_error(reply.get(), nullptr) != 0; }

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

bool enterProperty(const SdBusMessage &reply, const char *type)
{
    return reply && !isError(reply) && sd_bus_message_enter_container(reply.get(), 'v', type) > 0;
}

} // namespace ambertide
