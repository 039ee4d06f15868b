#include "adapters/linux/bus/SdBusWriter.h"

namespace ambertide {

SdBusWriter SdBusWriter::signal(sd_bus *bus, const char *path, const char *interface, const char *member)
{
    sd_bus_message *message = nullptr;
    if (bus != nullptr)
        sd_bus_message_new_signal(bus, &message, path, interface, member);
    return SdBusWriter(SdBusMessage(message));
}

SdBusWriter SdBusWriter::call(sd_bus *bus, const char *destination, const char *path, const char *interface,
                              const char *member)
{
    sd_bus_message *message = nullptr;
    if (bus != nullptr)
        sd_bus_message_new_method_call(bus, &message, destination, path, interface, member);
    return SdBusWriter(SdBusMessage(message));
}

SdBusWriter SdBusWriter::busCall(sd_bus *bus, const char *member)
{
    return call(bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", member);
}

SdBusWriter SdBusWriter::reply(sd_bus_message *call)
{
    sd_bus_message *message = nullptr;
    sd_bus_message_new_method_return(call, &message);
    return SdBusWriter(SdBusMessage(message));
}

SdBusWriter &SdBusWriter::objectPath(const char *path)
{
    writeBasic('o', path);
    return *this;
}

SdBusWriter &SdBusWriter::withoutStarting()
{
    if (m_message)
        sd_bus_message_set_auto_start(m_message.get(), 0);
    return *this;
}

void SdBusWriter::write(bool value)
{
    const int wire = value ? 1 : 0;
    writeBasic('b', &wire);
}

void SdBusWriter::write(std::int32_t value) { writeBasic('i', &value); }

void SdBusWriter::write(std::uint32_t value) { writeBasic('u', &value); }

void SdBusWriter::write(double value) { writeBasic('d', &value); }

void SdBusWriter::write(const char *text) { writeBasic('s', text); }

void SdBusWriter::write(const std::string &text) { write(text.c_str()); }

void SdBusWriter::write(std::span<const std::uint8_t> data) { writeArray('y', data.data(), data.size_bytes()); }

void SdBusWriter::write(std::span<const std::int32_t> data) { writeArray('i', data.data(), data.size_bytes()); }

void SdBusWriter::write(const UserInfoValue &value)
{
    if (std::holds_alternative<bool>(value))
        container('v', "b", [&] { add(std::get<bool>(value)); });
    else if (const auto *integer = std::get_if<std::int64_t>(&value))
        container('v', "x", [&] { writeBasic('x', integer); });
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

void SdBusWriter::open(char type, const char *contents)
{
    if (m_message)
        note(sd_bus_message_open_container(m_message.get(), type, contents));
}

void SdBusWriter::close()
{
    if (m_message)
        note(sd_bus_message_close_container(m_message.get()));
}

void SdBusWriter::writeBasic(char type, const void *value)
{
    if (m_message)
        note(sd_bus_message_append_basic(m_message.get(), type, value));
}

void SdBusWriter::writeArray(char type, const void *data, std::size_t size)
{
    if (m_message)
        note(sd_bus_message_append_array(m_message.get(), type, data, size));
}

void SdBusWriter::note(int result)
{
    if (result < 0)
        m_message.reset();
}

} // namespace ambertide
