#pragma once

#include "ports/DisplayServices.h"

#include <filesystem>
#include <optional>

namespace ambertide {

/// The calibration curve of a colour profile: its tag 'vcgt', which calibration tools add to what ICC.1 defines.
struct VideoCardGamma
{
    std::optional<GammaTables> tables; ///< nothing where the profile has none, or is damaged
    bool isDamaged;                    ///< it is no profile, or its curve cannot be read
};

VideoCardGamma readVideoCardGamma(const std::filesystem::path &profile);

} // namespace ambertide
