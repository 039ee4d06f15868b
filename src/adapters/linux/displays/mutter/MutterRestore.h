#pragma once

#include "adapters/linux/bus/SdBus.h"

namespace ambertide {

/// What to do about a calibration or a white point that does not become known in time.
enum class IfUnknown {
    leaveOut,     ///< of the tables
    writeNothing, ///< no tables at all
};

/// Gives every CRTC the tables that mutter itself would: the calibration of its display's profile, times the present
/// white point of Night Light if the display has a profile. Waits until mutter has taken them. The session bus must be
/// ready; `systemBus` is null where there is none.
///
/// False when that has not happened before the deadline, or not for certain.
bool restoreMutterDisplays(sd_bus *sessionBus, sd_bus *systemBus, SdBusDeadline deadline, IfUnknown unknown);

} // namespace ambertide
