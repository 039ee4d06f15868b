#pragma once

#include "adapters/linux/bus/SdBus.h"

namespace ambertide {

/// What is to be done with a calibration or a white point that is not known in time.
enum class IfUnknown {
    leaveOut,     ///< of the tables
    writeNothing, ///< no tables at all
};

/// Gives every CRTC the tables that mutter itself would: the calibration of its display's profile, with the present
/// white point of Night Light where that has a say. Waits until mutter has taken them, on a session bus that is ready;
/// `systemBus` is null where there is none.
///
/// False when that has not come about, or not with certainty, before the deadline.
bool restoreMutterDisplays(sd_bus *sessionBus, sd_bus *systemBus, SdBusDeadline deadline, IfUnknown unknown);

} // namespace ambertide
