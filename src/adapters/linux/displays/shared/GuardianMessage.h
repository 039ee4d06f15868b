#pragma once

#include <cstdint>

namespace ambertide {

/// What the application tells its guardian, one message a packet on the guardian's standard input: the window of the
/// claim under which it tints from now on, or 0 when the displays show the system's own colours again. The end of the
/// stream is the end of the application.
using GuardianMessage = std::uint32_t;

} // namespace ambertide
