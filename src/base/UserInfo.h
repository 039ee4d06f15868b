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

/// What a notification carries beside its name.
using UserInfo = std::map<std::string, UserInfoValue, std::less<>>;

/// The value under `key` as an integer: a whole number of either number kind that fits; nothing otherwise. A truth
/// value is no number.
std::optional<std::int64_t> integerValue(const UserInfo &userInfo, std::string_view key);

/// The value under `key` as a double: any number, finite or not; nothing otherwise.
std::optional<double> numberValue(const UserInfo &userInfo, std::string_view key);

/// One line for people, at most a few hundred bytes whatever the content: `{}` or `{key = value, ...}`.
std::string describe(const UserInfo &userInfo);

} // namespace ambertide
