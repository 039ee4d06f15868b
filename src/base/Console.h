#pragma once

#include <functional>
#include <string_view>

namespace ambertide::console {

/// Writes one diagnostic line, cut to 4 KB, to standard output at once. Any thread. It never waits: a line for which
/// the output has no room (full, closed, or a reader that does not read) is dropped.
void print(std::string_view line);

/// From now on lines go to `sink` instead of standard output; an empty one undoes that. For tests; not while other
/// threads print.
void redirect(std::function<void(std::string_view)> sink);

} // namespace ambertide::console
