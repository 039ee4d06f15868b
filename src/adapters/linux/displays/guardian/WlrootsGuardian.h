#pragma once

namespace ambertide {

/// Waits for the application's end, of whatever kind, and gives the outputs of a Wayland compositor the identity if
/// they were tinted then. This is for Hyprland, which goes on showing the tables of a program that has died. Returns
/// when nothing is left to do; false when the compositor cannot be used.
///
/// `where` is the compositor's socket; `channel` leads to the application and stays the caller's. The compositor is not
/// connected to before the application's end.
bool guardWlroots(const char *where, int channel);

} // namespace ambertide
