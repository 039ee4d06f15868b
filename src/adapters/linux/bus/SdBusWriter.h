#pragma once

#include "adapters/linux/bus/SdBus.h"
#include "base/UserInfo.h"

#include <cstddef>
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
        open(type, contents);
        writeContents();
        close();
        return *this;
    }

    /// An array of structures or dictionaries of this signature without any in it.
    SdBusWriter &emptyArray(const char *contents)
    {
        return container('a', contents, [] {});
    }

    SdBusWriter &objectPath(const char *path);

    /// Has the call fail where nobody owns the name that is called, in place of having the bus start a program for it.
    SdBusWriter &withoutStarting();

    /// Null when it could not be written.
    SdBusMessage take() { return std::move(m_message); }

private:
    explicit SdBusWriter(SdBusMessage message) : m_message(std::move(message)) {}

    void write(bool value);                         ///< b
    void write(std::int32_t value);                 ///< i
    void write(std::uint32_t value);                ///< u
    void write(double value);                       ///< d
    void write(const char *text);                   ///< s
    void write(const std::string &text);            ///< s
    void write(std::span<const std::uint8_t> data); ///< ay
    void write(std::span<const std::int32_t> data); ///< ai
    void write(const UserInfoValue &value);         ///< v
    void write(const UserInfo &entries);            ///< a{sv}; opaque values are left out

    void open(char type, const char *contents);
    void close();
    void writeBasic(char type, const void *value);
    void writeArray(char type, const void *data, std::size_t size);
    void note(int result);

    SdBusMessage m_message;
};

} // namespace ambertide
