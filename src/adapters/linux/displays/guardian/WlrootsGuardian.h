#pragma once

namespace ambertide {

/// Gives the outputs of a Wayland compositor the identity, once the application has ended, in whatever way, while it
/// tinted them: of Hyprland, which goes on showing the tables of a program that has died. Returns when nothing is left
/// to do; false when the compositor cannot be used.
///
/// `where` is the compositor's socket, `channel` the application's, which stays the caller's. Nothing is connected
/// before the application's end.
bool guardWlroots(const char *where, int channel);

} // namespace ambertide
