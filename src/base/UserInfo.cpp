#include "base/UserInfo.h"

#include <array>
#include <charconv>
#include <cmath>
#include <type_traits>

namespace ambertide {

namespace {

constexpr std::size_t longestText = 64;
constexpr std::size_t mostEntries = 4;

/// Cuts to `longestText` bytes and replaces what is not printable ASCII, so that foreign text stays one harmless line.
std::string printable(std::string_view text)
{
    std::string line(text.substr(0, longestText));
    for (char &character : line) {
        if (character < ' ' || character > '~')
            character = '?';
    }
    return text.size() > longestText ? line + "..." : line;
}

std::string describeValue(const UserInfoValue &value)
{
    return std::visit(
        [](const auto &held) -> std::string {
            using Held = std::decay_t<decltype(held)>;
            if constexpr (std::is_same_v<Held, bool>) {
                return held ? "true" : "false";
            } else if constexpr (std::is_same_v<Held, std::string>) {
                return '"' + printable(held) + '"';
            } else if constexpr (std::is_same_v<Held, OpaqueValue>) {
                return '<' + printable(held.typeName) + '>';
            } else {
                std::array<char, 32> digits = {};
                return {digits.data(), std::to_chars(digits.begin(), digits.end(), held).ptr};
            }
        },
        value);
}

} // namespace

std::optional<std::int64_t> integerValue(const UserInfo &userInfo, std::string_view key)
{
    const auto found = userInfo.find(key);
    const auto *integer = found != userInfo.end() ? std::get_if<std::int64_t>(&found->second) : nullptr;
    if (integer != nullptr)
        return *integer;
    const auto number = numberValue(userInfo, key);
    // 2^63 is a double that no int64 can hold. The comparison is written so that NaN fails it.
    constexpr double limit = 9223372036854775808.0;
    if (!number || !(*number >= -limit && *number < limit) || std::trunc(*number) != *number)
        return std::nullopt;
    return static_cast<std::int64_t>(*number);
}

std::optional<double> numberValue(const UserInfo &userInfo, std::string_view key)
{
    const auto found = userInfo.find(key);
    if (found == userInfo.end())
        return std::nullopt;
    if (const auto *integer = std::get_if<std::int64_t>(&found->second))
        return static_cast<double>(*integer);
    const auto *number = std::get_if<double>(&found->second);
    return number != nullptr ? std::optional(*number) : std::nullopt;
}

std::string describe(const UserInfo &userInfo)
{
    std::string line = "{";
    std::size_t shown = 0;
    for (const auto &[key, value] : userInfo) {
        if (shown == mostEntries) {
            line += ", ... " + std::to_string(userInfo.size() - shown) + " more";
            break;
        }
        line += shown == 0 ? "" : ", ";
        line += printable(key) + " = " + describeValue(value);
        ++shown;
    }
    return line + "}";
}

} // namespace ambertide
