#include "adapters/linux/bus/SdBus.h"

#include "adapters/linux/bus/SdBusReader.h"
#include "adapters/linux/bus/SdBusWriter.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>

namespace ambertide {

namespace {

std::uint64_t microsecondsUntil(SdBusDeadline deadline)
{
    using std::chrono::microseconds;
    const auto left = std::chrono::duration_cast<microseconds>(deadline - std::chrono::steady_clock::now());
    return static_cast<std::uint64_t>(std::max(left, microseconds(0)).count());
}

/// If the bus refuses a match, its observer gets no signals, and nobody can do anything about that. Without this
/// handler, sd-bus would close the connection.
int ignoreReply(sd_bus_message *, void *, sd_bus_error *) { return 0; }

/// Drops a signal that another program sends to this connection alone. The bus holds broadcasts to the sender that a
/// rule names, but delivers whatever is addressed to a connection, and sd-bus takes its sender for the one of the rule.
int dropForgedSignal(sd_bus_message *message, void *, sd_bus_error *)
{
    const char *const sender = sd_bus_message_get_sender(message);
    return sd_bus_message_is_signal(message, nullptr, nullptr) > 0 &&
           sd_bus_message_get_destination(message) != nullptr &&
           (!sender || std::string_view(sender) != "org.freedesktop.DBus");
}

} // namespace

SdBusConnection openSdBus(SdBusKind kind)
{
    sd_bus *bus = nullptr;
    const int result = kind == SdBusKind::session ? sd_bus_open_user(&bus) : sd_bus_open_system(&bus);
    if (result < 0)
        return nullptr;
    sd_bus_add_filter(bus, nullptr, dropForgedSignal, nullptr);
    return SdBusConnection(bus);
}

bool processUntil(sd_bus *bus, SdBusDeadline deadline, const std::function<bool()> &isDone)
{
    while (!isDone()) {
        const auto left = microsecondsUntil(deadline);
        const int handled = left > 0 ? sd_bus_process(bus, nullptr) : -ETIMEDOUT;
        if (handled < 0)
            return false;
        if (handled > 0)
            continue;
        const int waited = sd_bus_wait(bus, left);
        if (waited < 0 && waited != -EINTR)
            return false;
    }
    return true;
}

bool waitUntilReady(sd_bus *bus, SdBusDeadline deadline)
{
    return processUntil(bus, deadline, [bus] { return sd_bus_is_ready(bus) > 0; });
}

SdBusMessage callUntil(sd_bus *bus, sd_bus_message *call, SdBusDeadline deadline, int *error)
{
    sd_bus_message *reply = nullptr;
    const auto left = microsecondsUntil(deadline); // sd-bus takes 0 for its own default
    const int result = left > 0 ? sd_bus_call(bus, call, left, nullptr, &reply) : -ETIMEDOUT;
    if (error != nullptr)
        *error = result < 0 ? -result : 0;
    return SdBusMessage(reply);
}

std::optional<std::string> ownerOfName(sd_bus *bus, const std::string &name, SdBusDeadline deadline)
{
    int error = 0;
    const auto call = SdBusWriter::busCall(bus, "GetNameOwner").add(name).take();
    if (const auto reply = callUntil(bus, call.get(), deadline, &error))
        return SdBusReader(reply.get()).text();
    // What sd-bus makes of org.freedesktop.DBus.Error.NameHasNoOwner.
    if (error == ENXIO)
        return std::string();
    return std::nullopt;
}

std::string signalRule(std::initializer_list<std::pair<const char *, std::string_view>> conditions)
{
    std::string rule = "type='signal'";
    for (const auto &[key, value] : conditions) {
        if (!value.empty())
            rule.append(",").append(key).append("='").append(value).append("'");
    }
    return rule;
}

SdBusSlot addMatch(sd_bus *bus, const std::string &rule, sd_bus_message_handler_t handler, void *context)
{
    sd_bus_slot *slot = nullptr;
    sd_bus_add_match_async(bus, &slot, rule.c_str(), handler, ignoreReply, context);
    return SdBusSlot(slot);
}

} // namespace ambertide
