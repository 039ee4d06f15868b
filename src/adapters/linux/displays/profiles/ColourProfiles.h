#pragma once

#include "adapters/linux/bus/SdBus.h"
#include "ports/DisplayServices.h"

#include <optional>
#include <string>
#include <vector>

namespace ambertide {

/// What colord, on the system bus, keeps for a display.
struct ColourProfile
{
    /// Without a profile mutter shows plain tables, Night Light or not.
    enum class Knowledge { unknown, none, found };

    Knowledge knowledge = Knowledge::unknown;
    std::optional<GammaTables> calibration{}; ///< to be applied by tables
    std::string damagedFile{};                ///< the profile's, when that cannot be read
};

/// Asks for the default profiles of the displays at these connectors: one answer for each of them, when the deadline is
/// over at the latest. `systemBus` is null where there is none.
std::vector<ColourProfile> readColourProfiles(sd_bus *systemBus, const std::vector<std::string> &connectors,
                                              SdBusDeadline deadline);

/// Calls `handler` when something about a display changes, its default profile for one.
SdBusSlot watchColourProfiles(sd_bus *systemBus, sd_bus_message_handler_t handler, void *context);

} // namespace ambertide
