#pragma once

#include <chrono>

namespace ambertide {

/// How long the machine has slept since it was started, to a few milliseconds: the two clocks that tell it are read one
/// after the other.
std::chrono::nanoseconds timeAsleep();

} // namespace ambertide
