#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace ambertide {

/// The presets that launchers and shortcuts offer: every multiple of 100 K from 1000 to 6500, in ascending order. All
/// functions here: any thread.
// clang-format off
enum class ColorTemperature : std::uint8_t {
    k1000, k1100, k1200, k1300, k1400, k1500, k1600, k1700, k1800, k1900,
    k2000, k2100, k2200, k2300, k2400, k2500, k2600, k2700, k2800, k2900,
    k3000, k3100, k3200, k3300, k3400, k3500, k3600, k3700, k3800, k3900,
    k4000, k4100, k4200, k4300, k4400, k4500, k4600, k4700, k4800, k4900,
    k5000, k5100, k5200, k5300, k5400, k5500, k5600, k5700, k5800, k5900,
    k6000, k6100, k6200, k6300, k6400, k6500,
};
// clang-format on

inline constexpr std::size_t colorTemperatureCount = 56;

/// The name of this type for people.
inline constexpr std::string_view colorTemperatureTypeName = "Color Temperature";

/// Kelvin.
constexpr std::int64_t rawValue(ColorTemperature preset) { return 1000 + 100 * static_cast<std::int64_t>(preset); }

/// The preset of exactly this many kelvin; nothing is rounded.
constexpr std::optional<ColorTemperature> colorTemperature(std::int64_t kelvin)
{
    if (kelvin < 1000 || kelvin > 6500 || kelvin % 100 != 0)
        return std::nullopt;
    return static_cast<ColorTemperature>((kelvin - 1000) / 100);
}

std::span<const ColorTemperature> allColorTemperatures();

/// The preset as people see it: "3300K", or "3400K (Halogen)" for a landmark. In the language that the application has
/// when this is first called.
const std::string &displayRepresentation(ColorTemperature preset);

/// The preset's name for programs: "k3400". It never changes, so it may be stored.
std::string identifier(ColorTemperature preset);

/// The preset with exactly this identifier.
std::optional<ColorTemperature> colorTemperature(std::string_view identifier);

} // namespace ambertide

template <>
struct std::hash<ambertide::ColorTemperature>
{
    std::size_t operator()(ambertide::ColorTemperature preset) const noexcept
    {
        return std::hash<std::int64_t>()(ambertide::rawValue(preset));
    }
};
