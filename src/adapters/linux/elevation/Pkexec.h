#pragma once

#include "adapters/linux/process/ChildProcess.h"

#include <string>
#include <vector>

namespace ambertide {

// polkit's pkexec: shows the desktop's own prompt and runs a command as root under it. Any thread.

/// Its own exit statuses; what is run through it ends with others.
inline constexpr int pkexecDismissed = 126;     ///< the person closed the prompt
inline constexpr int pkexecNotAuthorised = 127; ///< not allowed, or nothing here can ask for a password

/// What runs the command, an absolute path and its arguments, as root.
ChildStart asAdministrator(const std::vector<std::string> &command);

/// Why that came to nothing, in one translated line; what the command itself wrote is passed on as it is.
std::string describeFailure(const ChildProcessEnd &end);

} // namespace ambertide
