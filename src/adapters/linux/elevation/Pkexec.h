#pragma once

#include "adapters/linux/process/ChildProcess.h"

#include <QString>

#include <string>
#include <vector>

namespace ambertide {

// polkit's pkexec: shows the desktop's own prompt and runs a program as root under it. Any thread.

inline constexpr const char *systemPkexec = "/usr/bin/pkexec";

/// Its own exit statuses; what is run through it ends with others.
inline constexpr int pkexecDismissed = 126;     ///< the person closed the prompt
inline constexpr int pkexecNotAuthorised = 127; ///< not allowed, or nothing here can ask for a password

/// What runs the command, an absolute path and its arguments, as root.
ChildStart asAdministrator(const std::string &pkexec, const std::vector<std::string> &command);

/// Why that came to nothing, in one translated line.
QString describeFailure(const ChildProcessEnd &end);

/// What was written meanwhile, in one line of valid text without control characters.
std::string oneLine(const std::string &output);

} // namespace ambertide
