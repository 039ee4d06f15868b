#pragma once

#include "adapters/linux/bus/SdBus.h"
#include "ports/DisplayServices.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace ambertide {

/// What colord, on the system bus, keeps for a display.
struct ColourProfile
{
    /// Unknown: colord did not answer in time. None: the display has no profile, and mutter shows plain tables then,
    /// whether Night Light is on or not.
    enum class Knowledge { unknown, none, found };

    Knowledge knowledge = Knowledge::unknown;
    std::optional<GammaTables> calibration{}; ///< the curve that gamma tables have to apply, if it has one
    std::string damagedFile{};                ///< the path of the profile, when that cannot be read
};

/// Asks for the default profiles of the displays at these connectors. Returns one answer for each, at the deadline at
/// the latest. `systemBus` is null where there is none.
std::vector<ColourProfile> readColourProfiles(sd_bus *systemBus, const std::vector<std::string> &connectors,
                                              SdBusDeadline deadline);

using ColourProfileWatch = std::array<SdBusSlot, 2>;

/// Calls `handler` when colord gets to know a display, perhaps with a profile, and when something about one changes,
/// such as its default profile.
ColourProfileWatch watchColourProfiles(sd_bus *systemBus, sd_bus_message_handler_t handler, void *context);

} // namespace ambertide
