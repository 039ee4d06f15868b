#pragma once

#include "ports/DisplayServices.h"

#include <filesystem>
#include <optional>

namespace ambertide {

/// The calibration curve of a colour profile: its tag 'vcgt', which calibration tools add to what ICC.1 defines.
/// Nothing where the file has none, is no profile, or is damaged. Reads no more of the file than that takes, 400 kB at
/// most.
std::optional<GammaTables> readVideoCardGamma(const std::filesystem::path &profile);

} // namespace ambertide
