#pragma once

namespace ambertide {

/// Prints a table in Markdown that compares Ambertide with the other programs for this that are installed, each run
/// alone on the same private X server.
void compare();

} // namespace ambertide
