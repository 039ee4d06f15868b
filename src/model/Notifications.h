#pragma once

#include <string_view>

/// The names of the notifications, and the one key of their user info.
namespace ambertide::notifications {

inline constexpr std::string_view updateTemperature = "Ambertide.UpdateTemperature";
inline constexpr std::string_view getTemperature = "Ambertide.GetTemperature";
inline constexpr std::string_view temperatureResponse = "Ambertide.TemperatureResponse";
inline constexpr std::string_view instance = "com.ambertide.instance";
inline constexpr std::string_view checkScheduleNow = "CheckScheduleNow";
inline constexpr std::string_view temperatureKey = "temperature";

} // namespace ambertide::notifications
