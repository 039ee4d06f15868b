#pragma once

#include <string_view>

/// The token by which a compositor lets a window come to the front. The toolkit takes it from the environment when a
/// window asks for that.
namespace ambertide::activation_token {

/// Puts a token there for the next window that asks. The environment's own table, which other threads read, stays where
/// it is, and no memory is spent: all tokens share one place. Too long a token is none. Main thread.
void offer(std::string_view token);

} // namespace ambertide::activation_token
