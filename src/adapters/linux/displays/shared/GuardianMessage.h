#pragma once

#include <cstdint>

namespace ambertide {

/// What the application tells its guardian, in one packet for each message on the guardian's standard input: the claim
/// under which it tints from now on (on X11 its window), or 0 when the displays show the system's own colours again.
/// The end of the stream is the end of the application.
using GuardianMessage = std::uint32_t;

} // namespace ambertide
