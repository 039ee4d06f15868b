#pragma once

#include "base/Notification.h"

#include <cstdint>
#include <optional>
#include <string>

/// The notifications that tie the processes and the models of this system together.
namespace ambertide::notifications {

inline constexpr char updateTemperature[] = "Ambertide.UpdateTemperature";
inline constexpr char getTemperature[] = "Ambertide.GetTemperature";
inline constexpr char temperatureResponse[] = "Ambertide.TemperatureResponse";
inline constexpr char instance[] = "com.ambertide.instance";
inline constexpr char checkScheduleNow[] = "CheckScheduleNow";

/// Key of the user info: the temperature in kelvin.
inline constexpr char temperatureKey[] = "temperature";

/// Key of the response's user info: a line in English saying why the displays do not show the temperature. Absent if
/// they do.
inline constexpr char refusalKey[] = "refusal";

inline Notification withoutUserInfo(std::string name) { return {std::move(name), std::nullopt}; }

inline Notification withTemperature(std::string name, std::int64_t kelvin)
{
    return {std::move(name), UserInfo{{temperatureKey, kelvin}}};
}

/// Nothing when it is absent or not a whole number. The range is not checked.
inline std::optional<std::int64_t> integerTemperature(const Notification &notification)
{
    return notification.userInfo ? integerValue(*notification.userInfo, temperatureKey) : std::nullopt;
}

/// Nothing when it is absent or not a number. The range is not checked.
inline std::optional<double> anyTemperature(const Notification &notification)
{
    return notification.userInfo ? numberValue(*notification.userInfo, temperatureKey) : std::nullopt;
}

} // namespace ambertide::notifications
