#pragma once

namespace ambertide {

/// Gives KWin's Night Light back when the application has ended, in whatever way, while it tinted by it. `state` is the
/// file of the loan; the environment names the other files and the bus. Returns when nothing is left to do.
bool guardKWin(const char *state, int channel);

} // namespace ambertide
