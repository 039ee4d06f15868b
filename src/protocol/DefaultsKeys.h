#pragma once

#include <string_view>

/// Where the models keep their values in the user defaults.
namespace ambertide::defaults {

/// Double, kelvin: the temperature last chosen.
inline constexpr std::string_view temperature = "Ambertide.Temperature";
/// Bool: the schedule is in force.
inline constexpr std::string_view scheduleEnabled = "Ambertide.ScheduleEnabled";
/// Data: the schedule, a JSON array of ScheduleEntry.
inline constexpr std::string_view scheduleEntries = "Ambertide.ScheduleEntries";

} // namespace ambertide::defaults
