#pragma once

#include "adapters/linux/bus/SdBus.h"
#include "adapters/linux/displays/shared/GammaRamp.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

/// The calls of mutter's interface org.gnome.Mutter.DisplayConfig that have to do with gamma tables.
namespace ambertide::display_config {

constexpr char service[] = "org.gnome.Mutter.DisplayConfig";
constexpr char path[] = "/org/gnome/Mutter/DisplayConfig";
constexpr char interface[] = "org.gnome.Mutter.DisplayConfig";
/// The error for a serial that is no longer the newest.
constexpr char staleError[] = "org.freedesktop.DBus.Error.AccessDenied";

struct Crtc
{
    std::uint32_t identifier;
    bool isActive;         ///< shows a picture
    std::string connector; ///< of the display that it drives, as "DP-1"; empty where there is none
};

struct Resources
{
    std::uint32_t serial; ///< to be given with each call; stale after the next change of the displays
    std::vector<Crtc> crtcs;
};

/// The three tables that mutter keeps for a CRTC. Valid as long as the message that they were read from.
using Gamma = std::array<std::span<const std::uint16_t>, 3>;

/// Null without memory or a connection.
SdBusMessage getResources(sd_bus *bus);
SdBusMessage getCrtcGamma(sd_bus *bus, std::uint32_t serial, std::uint32_t crtc);
/// Null also for a ramp of fewer than two entries: empty tables crash mutter, and with it the session. So do tables of
/// different lengths, which a GammaRamp cannot have.
SdBusMessage setCrtcGamma(sd_bus *bus, std::uint32_t serial, std::uint32_t crtc, const GammaRamp &ramp);

/// Nothing when the reply is an error, malformed, or larger than any real one.
std::optional<Resources> readResources(sd_bus_message *reply);
std::optional<Gamma> readGamma(sd_bus_message *reply);

/// How many entries a table for this CRTC should have. Mutter tells the length of the table that any program set last,
/// or 0 if there has not been one; a table of another length it cuts or stretches without interpolation.
std::uint16_t tableSize(const Gamma &gamma);

bool isSame(const Gamma &gamma, const GammaRamp &ramp);

} // namespace ambertide::display_config
