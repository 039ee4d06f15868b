#pragma once

#include <functional>
#include <string_view>

namespace ambertide::console {

/// Writes one diagnostic line to standard output, at once. Any thread. A full or closed output is ignored.
void print(std::string_view line);

/// Hands lines to `sink` in place of standard output until called with an empty one. For tests; not while other threads
/// print.
void redirect(std::function<void(std::string_view)> sink);

} // namespace ambertide::console
