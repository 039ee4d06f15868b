#pragma once

#include "ports/DisplayServices.h"

namespace ambertide {

/// The temperature, in KWin's kelvin, at which KWin's Night Light shows a white point as near as it can to that of the
/// tables: 1900 to 6500.
int nearestNightLightTemperature(const GammaTables &tables);

} // namespace ambertide
