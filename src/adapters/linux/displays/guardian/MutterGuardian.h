#pragma once

namespace ambertide {

/// Gives the displays of GNOME back when the application has ended, in whatever way, while it tinted them: mutter keeps
/// the tables of a program that has gone. Becomes the program `restorer` for that, which has all that it takes; the
/// guardian itself stays for as long as the displays are tinted and therefore small. False when it cannot.
bool guardMutter(const char *restorer, int channel);

} // namespace ambertide
