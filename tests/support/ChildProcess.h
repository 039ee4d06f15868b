#pragma once

#include <sys/types.h>

namespace ambertide {

/// The first child, of any thread of a process, with this name; 0 when there is none.
pid_t childOf(pid_t process, const char *name);

} // namespace ambertide
