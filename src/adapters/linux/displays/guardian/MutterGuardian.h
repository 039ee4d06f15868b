#pragma once

namespace ambertide {

/// Waits for the application's end, of whatever kind, and restores GNOME's displays if they were tinted then, since
/// mutter keeps the tables of a program that has gone. For the restoring it becomes the program `restorer`: a guardian
/// runs for as long as the displays are tinted, so it has to be small. False when that cannot be started.
bool guardMutter(const char *restorer, int channel);

} // namespace ambertide
