#pragma once

namespace ambertide {

/// Ambertide beside the other programs for this that are installed, each alone on the same private X server: a table in
/// Markdown.
void compare();

} // namespace ambertide
