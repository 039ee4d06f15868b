#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace ambertide {

/// A value of another kind, such as an array or a dictionary; only the name of its type is kept.
struct OpaqueValue
{
    std::string typeName;
    bool operator==(const OpaqueValue &) const = default;
};

using UserInfoValue = std::variant<bool, std::int64_t, double, std::string, OpaqueValue>;

/// What a notification carries besides its name.
using UserInfo = std::map<std::string, UserInfoValue, std::less<>>;

/// The value under `key` if it is an integer, or a double that is whole and fits into one; else nothing. A bool does
/// not count as a number.
std::optional<std::int64_t> integerValue(const UserInfo &userInfo, std::string_view key);

/// The value under `key` as a double if it is a number, finite or not; else nothing.
std::optional<double> numberValue(const UserInfo &userInfo, std::string_view key);

/// One readable line, at most a few hundred bytes whatever the content: `{}` or `{key = value, ...}`.
std::string describe(const UserInfo &userInfo);

} // namespace ambertide
