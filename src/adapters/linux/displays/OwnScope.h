#pragma once

#include <sys/types.h>

namespace ambertide {

/// Has the session's service manager, where there is one, put a child of this process into a control group of its own,
/// so that it is not killed along with the application's. Waits for a quarter of a second at most.
void moveToOwnScope(pid_t process);

} // namespace ambertide
