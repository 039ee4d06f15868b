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

/// The factors, up to 1, for red, green and blue that mutter shows now; all 1 where there is no Night Light.
std::array<double, 3> whitePoint(sd_bus *bus, SdBusDeadline deadline);

} // namespace ambertide::night_light
