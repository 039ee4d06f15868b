#pragma once

#include "adapters/linux/bus/SdBusReader.h"
#include "adapters/linux/bus/SdBusWriter.h"

#include <cerrno>

namespace ambertide {

/// Turns functions on an object into handlers for a table of sd-bus (`sd_bus_vtable`), whose context is the object. A
/// refusal is a text for the caller, with static lifetime.

inline constexpr const char *noRefusal = nullptr;
inline constexpr const char *malformedCall = "The call is malformed or too large";

/// Reads the arguments and writes the reply. Returns a refusal, or noRefusal to have the reply sent.
template <typename Object>
using SdBusMethod = const char *(*)(Object &object, SdBusReader &arguments, SdBusWriter &reply);
/// Writes the property's value.
template <typename Object>
using SdBusProperty = void (*)(Object &object, SdBusWriter &value);

template <typename Object>
int answerCall(SdBusMethod<Object> method, sd_bus_message *call, void *context, sd_bus_error *error)
{
    SdBusReader arguments(call);
    auto reply = SdBusWriter::reply(call);
    if (const char *refusal = method(*static_cast<Object *>(context), arguments, reply))
        return sd_bus_error_set(error, SD_BUS_ERROR_INVALID_ARGS, refusal);
    const auto message = reply.take();
    return message ? sd_bus_send(nullptr, message.get(), nullptr) : -EINVAL;
}

template <typename Object>
int answerRead(SdBusProperty<Object> property, sd_bus_message *reply, void *context)
{
    SdBusWriter value(reply);
    property(*static_cast<Object *>(context), value);
    return value.take() ? 0 : -EINVAL;
}

template <auto method>
int handleCall(sd_bus_message *call, void *context, sd_bus_error *error)
{
    return answerCall(method, call, context, error);
}

template <auto property>
int handleRead(sd_bus *, const char *, const char *, const char *, sd_bus_message *reply, void *context, sd_bus_error *)
{
    return answerRead(property, reply, context);
}

} // namespace ambertide
