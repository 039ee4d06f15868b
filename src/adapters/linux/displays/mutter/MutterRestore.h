#pragma once

#include "adapters/linux/bus/SdBus.h"

namespace ambertide {

/// Gives every CRTC the tables that mutter itself would: the calibration of its display's profile, with the present
/// white point of Night Light where that has a say. Waits until mutter has taken them, on a session bus that is ready;
/// `systemBus` is null where there is none.
///
/// False when that has not come about, or not with certainty, before the deadline. What is not known by then,
/// calibration or white point, is left out of the tables, or with writeNothing nothing is written.
enum class IfUnknown { leaveOut, writeNothing };
bool restoreMutterDisplays(sd_bus *sessionBus, sd_bus *systemBus, SdBusDeadline deadline, IfUnknown unknown);

} // namespace ambertide
