#pragma once

#include "adapters/linux/bus/SdBus.h"
#include "base/UserInfo.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ambertide {

/// Reads a message from an untrusted sender in bounded time and memory.
///
/// Any false or empty result means that the message is malformed, or so large that it can only be meant to keep the
/// reader busy; nothing more can be read then. The message must outlive the reader.
class SdBusReader
{
public:
    static constexpr std::size_t mostEntries = 64;
    /// Bytes. Longer texts are cut after a whole character.
    static constexpr std::size_t longestText = 1024;

    explicit SdBusReader(sd_bus_message *message) : m_message(message) {}

    std::optional<std::string> text();
    std::optional<bool> boolean();
    std::optional<std::int32_t> int32();
    std::optional<std::uint32_t> uint32();

    /// An array `as`, of which entries beyond `mostEntries` are dropped.
    std::optional<std::vector<std::string>> texts();

    /// A dictionary `a{sv}`, of which entries beyond `mostEntries` are dropped, but never the one with the key
    /// `alwaysKept`. A value that is not a number, truth value or text becomes opaque; an unsigned number that does not
    /// fit into an int64 becomes a double; a value inside several nested variants is unwrapped.
    std::optional<UserInfo> dictionary(std::string_view alwaysKept = {});

    /// A dictionary `a{sa{sv}}` of such dictionaries, with the same limit.
    std::optional<std::map<std::string, UserInfo, std::less<>>> dictionaries(std::string_view alwaysKept);

    /// One variant, read like the values of a dictionary.
    std::optional<UserInfoValue> variant();

    /// Reads an array, calling the function for each entry, or the inside of another container, calling it once. The
    /// function returns false when what it reads is malformed.
    template <typename ReadEntry>
    bool array(const char *contents, ReadEntry readEntry)
    {
        return container('a', contents, [&] {
            while (!isAtEnd()) {
                if (!readEntry())
                    return false;
            }
            return true;
        });
    }
    template <typename ReadContents>
    bool container(char type, const char *contents, ReadContents readContents)
    {
        return enter(type, contents) && readContents() && leave();
    }

    /// Skips the next value, whatever its type. sd_bus_message_skip() does so as well, but visits each element of even
    /// the largest array.
    bool skip();

private:
    bool enter(char type, const char *contents);
    bool leave();
    bool isAtEnd();
    template <typename Value>
    std::optional<Value> basic(char type);
    template <typename Wire>
    std::optional<UserInfoValue> integer(char type);
    template <typename Value, typename ReadValue>
    std::optional<std::map<std::string, Value, std::less<>>> entries(const char *types, std::string_view alwaysKept,
                                                                     ReadValue readValue);
    std::optional<UserInfoValue> variantContents(const std::string &signature);

    sd_bus_message *m_message;
    int m_valuesLeft = 100'000; ///< nested ones included; reading that many takes some 20 ms
};

} // namespace ambertide
