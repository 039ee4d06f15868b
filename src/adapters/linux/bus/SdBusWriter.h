#pragma once

#include "adapters/linux/bus/SdBus.h"
#include "base/UserInfo.h"

#include <cstdint>
#include <span>
#include <string>
#include <utility>

namespace ambertide {

/// Writes a message. The C++ type of a value decides its D-Bus type, which must fit the message's signature.
///
/// Without a connection, or once a value could not be written (such as text that is not UTF-8), all calls do nothing
/// and take() returns null.
class SdBusWriter
{
public:
    static SdBusWriter signal(sd_bus *bus, const char *path, const char *interface, const char *member);
    static SdBusWriter call(sd_bus *bus, const char *destination, const char *path, const char *interface,
                            const char *member);
    /// Calls a method of the bus itself.
    static SdBusWriter busCall(sd_bus *bus, const char *member);
    static SdBusWriter reply(sd_bus_message *call);
    /// Appends to a message that sd-bus itself has begun and will send, such as the reply with the value of a property.
    explicit SdBusWriter(sd_bus_message *message) : m_message(sd_bus_message_ref(message)) {}

    template <typename... Values>
    SdBusWriter &add(const Values &...values)
    {
        (write(values), ...);
        return *this;
    }

    /// Writes a container of the type 'a' (array), 'e' (dictionary entry), 'r' (structure) or 'v' (variant);
    /// `writeContents` adds its contents to this writer.
    template <typename WriteContents>
    SdBusWriter &container(char type, const char *contents, WriteContents writeContents)
    {
        apply<&sd_bus_message_open_container>(type, contents);
        writeContents();
        return apply<&sd_bus_message_close_container>();
    }

    SdBusWriter &objectPath(const char *path) { return apply<&sd_bus_message_append_basic>('o', path); }

    /// Makes the call fail when nobody owns the destination, where the bus would otherwise start a program for it.
    SdBusWriter &withoutStarting() { return apply<&sd_bus_message_set_auto_start>(0); }

    /// The finished message; null when it could not be written.
    SdBusMessage take() { return std::move(m_message); }

private:
    explicit SdBusWriter(SdBusMessage message) : m_message(std::move(message)) {}

    void write(bool value);
    void write(std::int32_t value) { apply<&sd_bus_message_append_basic>('i', &value); }
    void write(std::uint32_t value) { apply<&sd_bus_message_append_basic>('u', &value); }
    void write(std::uint64_t value) { apply<&sd_bus_message_append_basic>('t', &value); }
    void write(double value) { apply<&sd_bus_message_append_basic>('d', &value); }
    void write(const char *text) { apply<&sd_bus_message_append_basic>('s', text); }
    void write(const std::string &text) { write(text.c_str()); }
    void write(std::span<const std::uint8_t> data); ///< ay
    void write(std::span<const std::int32_t> data); ///< ai
    void write(const UserInfoValue &value);         ///< v
    void write(const UserInfo &entries);            ///< a{sv}; opaque values are left out

    template <auto function, typename... Arguments>
    SdBusWriter &apply(Arguments... arguments)
    {
        if (m_message && function(m_message.get(), arguments...) < 0)
            m_message.reset();
        return *this;
    }

    SdBusMessage m_message;
};

} // namespace ambertide
