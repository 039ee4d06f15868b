#pragma once

namespace ambertide {

/// Gives the displays of GNOME back when the application has ended, in whatever way, while it tinted them: mutter keeps
/// the tables of a program that has gone. Needs the session bus only then. `where` is not used: the environment names
/// the bus. Returns when nothing is left to do.
bool guardMutter(const char *where, int channel);

} // namespace ambertide
