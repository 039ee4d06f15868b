#pragma once

namespace ambertide {

/// Waits for the application's end, of whatever kind, and gives KWin's Night Light back if the application was using it
/// to tint. `state` is the state file of the loan; the environment names the other files and the bus. Returns when
/// nothing is left to do.
bool guardKWin(const char *state, int channel);

} // namespace ambertide
