#pragma once

#include "adapters/linux/bus/SdBus.h"
#include "ports/DisplayServices.h"

#include <optional>
#include <string>
#include <vector>

namespace ambertide {

/// What colord keeps for a display.
struct ColourProfile
{
    /// False where it is certain that there is no profile: mutter then shows plain tables, Night Light or not.
    bool mayExist = true;
    std::optional<GammaTables> calibration; ///< to be applied by tables
};

/// Asks colord, on the system bus, for the default profiles of the displays at these connectors. One answer for each
/// of them, when the deadline is over at the latest.
std::vector<ColourProfile> readColourProfiles(const std::vector<std::string> &connectors, SdBusDeadline deadline);

} // namespace ambertide
