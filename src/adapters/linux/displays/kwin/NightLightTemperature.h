#pragma once

#include "ports/DisplayServices.h"

namespace ambertide {

/// The temperature, 1900 to 6500 in KWin's kelvin, at which the white point of KWin's Night Light is nearest to that of
/// the tables.
int nearestNightLightTemperature(const GammaTables &tables);

} // namespace ambertide
