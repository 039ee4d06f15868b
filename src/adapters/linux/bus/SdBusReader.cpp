#include "adapters/linux/bus/SdBusReader.h"

#include <cstdint>
#include <utility>

namespace ambertide {

namespace {

std::string shortened(std::string_view text)
{
    if (text.size() <= SdBusReader::longestText)
        return std::string(text);
    const auto isInsideCharacter = [text](std::size_t at) { return (static_cast<unsigned char>(text[at]) >> 6U) == 2; };
    std::size_t end = SdBusReader::longestText;
    while (end > 0 && isInsideCharacter(end))
        --end;
    return std::string(text.substr(0, end));
}

} // namespace

bool SdBusReader::enter(char type, const char *contents)
{
    return --m_valuesLeft > 0 && sd_bus_message_enter_container(m_message, type, contents) > 0;
}

bool SdBusReader::leave() { return sd_bus_message_exit_container(m_message) >= 0; }

bool SdBusReader::isAtEnd() { return sd_bus_message_at_end(m_message, 0) != 0; }

template <typename Value>
std::optional<Value> SdBusReader::basic(char type)
{
    Value value{};
    if (--m_valuesLeft <= 0 || sd_bus_message_read_basic(m_message, type, static_cast<void *>(&value)) <= 0)
        return std::nullopt;
    return value;
}

template <typename Wire>
std::optional<UserInfoValue> SdBusReader::integer(char type)
{
    const auto read = basic<Wire>(type);
    if (!read)
        return std::nullopt;
    if (std::in_range<std::int64_t>(*read))
        return UserInfoValue(static_cast<std::int64_t>(*read));
    return UserInfoValue(static_cast<double>(*read));
}

std::optional<std::string> SdBusReader::text()
{
    const auto read = basic<const char *>('s');
    return read ? std::optional(shortened(*read)) : std::nullopt;
}

std::optional<bool> SdBusReader::boolean()
{
    const auto read = basic<int>('b');
    return read ? std::optional(*read != 0) : std::nullopt;
}

std::optional<std::int32_t> SdBusReader::int32() { return basic<std::int32_t>('i'); }

std::optional<std::uint32_t> SdBusReader::uint32() { return basic<std::uint32_t>('u'); }

std::optional<std::vector<std::string>> SdBusReader::texts()
{
    std::vector<std::string> entries;
    const bool isRead = array("s", [&] {
        const auto entry = text();
        if (entry && entries.size() < mostEntries)
            entries.push_back(*entry);
        return entry.has_value();
    });
    return isRead ? std::optional(std::move(entries)) : std::nullopt;
}

template <typename Value, typename ReadValue>
std::optional<std::map<std::string, Value, std::less<>>>
SdBusReader::entries(const char *types, std::string_view alwaysKept, ReadValue readValue)
{
    std::map<std::string, Value, std::less<>> entries;
    const auto readEntry = [&] {
        auto key = text();
        auto value = key ? readValue() : std::nullopt;
        if (!value)
            return false;
        const std::size_t reserved = alwaysKept.empty() || entries.contains(alwaysKept) ? 0 : 1;
        if (entries.size() + reserved < mostEntries || *key == alwaysKept)
            entries.insert_or_assign(*std::move(key), *std::move(value));
        return true;
    };
    const auto contents = std::string("{") + types + '}';
    const bool isRead = array(contents.c_str(), [&] { return container('e', types, readEntry); });
    return isRead ? std::optional(std::move(entries)) : std::nullopt;
}

std::optional<UserInfo> SdBusReader::dictionary(std::string_view alwaysKept)
{
    return entries<UserInfoValue>("sv", alwaysKept, [this] { return variant(); });
}

std::optional<std::map<std::string, UserInfo, std::less<>>> SdBusReader::dictionaries(std::string_view alwaysKept)
{
    return entries<UserInfo>("sa{sv}", {}, [this, alwaysKept] { return dictionary(alwaysKept); });
}

std::optional<UserInfoValue> SdBusReader::variant()
{
    char type = 0;
    const char *contents = nullptr;
    if (sd_bus_message_peek_type(m_message, &type, &contents) <= 0 || type != 'v')
        return std::nullopt;
    const std::string signature = contents; // copied, since the next call on the message invalidates it
    std::optional<UserInfoValue> value;
    const bool isRead = container('v', signature.c_str(), [&] {
        value = variantContents(signature);
        return value.has_value();
    });
    return isRead ? std::move(value) : std::nullopt;
}

std::optional<UserInfoValue> SdBusReader::variantContents(const std::string &signature)
{
    switch (signature.size() == 1 ? signature.front() : '\0') {
    case 'b':
        if (const auto read = boolean())
            return UserInfoValue(*read);
        return std::nullopt;
    case 'y':
        return integer<std::uint8_t>('y');
    case 'n':
        return integer<std::int16_t>('n');
    case 'q':
        return integer<std::uint16_t>('q');
    case 'i':
        return integer<std::int32_t>('i');
    case 'u':
        return integer<std::uint32_t>('u');
    case 'x':
        return integer<std::int64_t>('x');
    case 't':
        return integer<std::uint64_t>('t');
    case 'd':
        if (const auto read = basic<double>('d'))
            return UserInfoValue(*read);
        return std::nullopt;
    case 's':
    case 'o':
    case 'g':
        if (const auto read = basic<const char *>(signature.front()))
            return UserInfoValue(shortened(*read));
        return std::nullopt;
    case 'v':
        return variant();
    default:
        return skip() ? std::optional(UserInfoValue(OpaqueValue{signature})) : std::nullopt;
    }
}

bool SdBusReader::skip()
{
    char type = 0;
    const char *contents = nullptr;
    if (--m_valuesLeft <= 0 || sd_bus_message_peek_type(m_message, &type, &contents) <= 0)
        return false;
    if (contents == nullptr) {
        const char basicType[] = {type, '\0'};
        return sd_bus_message_skip(m_message, basicType) > 0;
    }
    constexpr std::string_view fixedSizeTypes = "ynqiuxtd";
    if (type == 'a' && contents[1] == '\0' && fixedSizeTypes.find(contents[0]) != std::string_view::npos) {
        const void *elements = nullptr;
        std::size_t size = 0;
        return sd_bus_message_read_array(m_message, contents[0], &elements, &size) >= 0;
    }
    return container(type, contents, [this] {
        while (!isAtEnd()) {
            if (!skip())
                return false;
        }
        return true;
    });
}

} // namespace ambertide
