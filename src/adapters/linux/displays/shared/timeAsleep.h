#pragma once

#include <chrono>

namespace ambertide {

/// How long the machine has slept since it was started. Exact to a few milliseconds, because the two clocks that it is
/// computed from are read one after the other.
std::chrono::nanoseconds timeAsleep();

} // namespace ambertide
