#include "adapters/linux/bus/SdBusWriter.h"

namespace ambertide {

namespace {

template <auto create, typename Source, typename... Arguments>
SdBusMessage newMessage(Source *source, Arguments... arguments)
{
    sd_bus_message *message = nullptr;
    if (source != nullptr)
        create(source, &message, arguments...);
    return SdBusMessage(message);
}

} // namespace

SdBusWriter SdBusWriter::signal(sd_bus *bus, const char *path, const char *interface, const char *member)
{
    return SdBusWriter(newMessage<&sd_bus_message_new_signal>(bus, path, interface, member));
}

SdBusWriter SdBusWriter::call(sd_bus *bus, const char *destination, const char *path, const char *interface,
                              const char *member)
{
    return SdBusWriter(newMessage<&sd_bus_message_new_method_call>(bus, destination, path, interface, member));
}

SdBusWriter SdBusWriter::busCall(sd_bus *bus, const char *member)
{
    return call(bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", member);
}

SdBusWriter SdBusWriter::reply(sd_bus_message *call)
{
    return SdBusWriter(newMessage<&sd_bus_message_new_method_return>(call));
}

void SdBusWriter::write(bool value)
{
    const int wire = value ? 1 : 0;
    apply<&sd_bus_message_append_basic>('b', &wire);
}

void SdBusWriter::write(std::span<const std::uint8_t> data)
{
    apply<&sd_bus_message_append_array>('y', data.data(), data.size_bytes());
}

void SdBusWriter::write(std::span<const std::int32_t> data)
{
    apply<&sd_bus_message_append_array>('i', data.data(), data.size_bytes());
}

void SdBusWriter::write(const UserInfoValue &value)
{
    if (const auto *truth = std::get_if<bool>(&value))
        container('v', "b", [&] { add(*truth); });
    else if (const auto *integer = std::get_if<std::int64_t>(&value))
        container('v', "x", [&] { apply<&sd_bus_message_append_basic>('x', integer); });
    else if (const auto *number = std::get_if<double>(&value))
        container('v', "d", [&] { add(*number); });
    else if (const auto *text = std::get_if<std::string>(&value))
        container('v', "s", [&] { add(*text); });
}

void SdBusWriter::write(const UserInfo &entries)
{
    container('a', "{sv}", [&] {
        for (const auto &[key, value] : entries) {
            if (!std::holds_alternative<OpaqueValue>(value))
                container('e', "sv", [&, &key = key, &value = value] { add(key, value); });
        }
    });
}

} // namespace ambertide
