#pragma once

#include <sys/types.h>

namespace ambertide {

/// Asks the session's systemd, where there is one, to put a child of this process into a control group (a scope) of its
/// own, so that it is not killed along with the application's. Waits for a quarter of a second at most.
void moveToOwnScope(pid_t process);

} // namespace ambertide
