#pragma once

#include "adapters/linux/bus/SdBus.h"

namespace ambertide {

/// How long a restore may take in all.
constexpr std::chrono::milliseconds longestMutterRestore{400};

/// Gives every CRTC the tables that mutter itself would: the calibration of its display's profile, with the present
/// white point of Night Light where that has a say. Waits until mutter has taken them, on a connection that is ready.
/// False when that has not come about before the deadline.
bool restoreMutterDisplays(sd_bus *bus, SdBusDeadline deadline);

} // namespace ambertide
