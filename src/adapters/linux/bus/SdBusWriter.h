#pragma once

#include "adapters/linux/bus/SdBus.h"
#include "base/UserInfo.h"

#include <cstdint>
#include <span>
#include <string>
#include <utility>

namespace ambertide {

/// Writes a message. The type of a value decides how it is written; what is written must fit the message's signature.
///
/// Without a connection, and once something cannot be written (a text that is no UTF-8), nothing more is written, and
/// there is no message in the end.
class SdBusWriter
{
public:
    static SdBusWriter signal(sd_bus *bus, const char *path, const char *interface, const char *member);
    static SdBusWriter call(sd_bus *bus, const char *destination, const char *path, const char *interface,
                            const char *member);
    /// Calls a method of the bus itself.
    static SdBusWriter busCall(sd_bus *bus, const char *member);
    static SdBusWriter reply(sd_bus_message *call);
    /// Goes on with a message that sd-bus sends, such as the one with the value of a property.
    explicit SdBusWriter(sd_bus_message *message) : m_message(sd_bus_message_ref(message)) {}

    template <typename... Values>
    SdBusWriter &add(const Values &...values)
    {
        (write(values), ...);
        return *this;
    }

    /// Of the type 'a' (array), 'r' (structure) or 'v' (variant); `writeContents` adds to this writer.
    template <typename WriteContents>
    SdBusWriter &container(char type, const char *contents, WriteContents writeContents)
    {
        apply<&sd_bus_message_open_container>(type, contents);
        writeContents();
        return apply<&sd_bus_message_close_container>();
    }

    SdBusWriter &objectPath(const char *path) { return apply<&sd_bus_message_append_basic>('o', path); }

    /// Has the call fail where nobody owns the name that is called, in place of having the bus start a program for it.
    SdBusWriter &withoutStarting() { return apply<&sd_bus_message_set_auto_start>(0); }

    /// Null when it could not be written.
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
