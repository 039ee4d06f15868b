#pragma once

#include "adapters/linux/bus/SdBus.h"

#include <array>

/// GNOME's own evening tint, which its settings daemon times and mutter shows.
namespace ambertide::night_light {

constexpr char service[] = "org.gnome.SettingsDaemon.Color";
constexpr char path[] = "/org/gnome/SettingsDaemon/Color";
constexpr char interface[] = "org.gnome.SettingsDaemon.Color";
constexpr char activeProperty[] = "NightLightActive";
constexpr char temperatureProperty[] = "Temperature"; ///< kelvin

/// The call that asks for the temperature that mutter shows now.
SdBusMessage askForTemperature(sd_bus *bus);
/// The factors for red, green and blue, 0 to 1, of the temperature in the reply to that; all 1 where it has none.
std::array<double, 3> whitePoint(const SdBusMessage &reply);

} // namespace ambertide::night_light
