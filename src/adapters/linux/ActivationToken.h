#pragma once

#include <string_view>

/// The token by which a compositor lets a window come to the front. The toolkit takes it from the environment when a
/// window asks for that.
namespace ambertide::activation_token {

/// Puts a token there for the next window that asks. All tokens share one buffer, so memory does not grow, and the
/// environment's table, which other threads read, stays where it is. A token that is too long is ignored. Main thread.
void offer(std::string_view token);

} // namespace ambertide::activation_token
