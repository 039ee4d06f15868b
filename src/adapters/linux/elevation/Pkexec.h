#pragma once

#include "adapters/linux/process/ChildProcess.h"

#include <QString>

#include <string>
#include <vector>

namespace ambertide {

// polkit's pkexec, which shows the desktop's own password prompt and then runs a program as root. Any thread.

inline constexpr const char *systemPkexec = "/usr/bin/pkexec";

/// The exit statuses of pkexec itself; the programs that it runs for us end with others.
inline constexpr int pkexecDismissed = 126;     ///< the person closed the prompt
inline constexpr int pkexecNotAuthorised = 127; ///< not allowed, or nothing here can ask for a password

/// How to start pkexec so that it runs `command`, an absolute path and its arguments, as root.
ChildStart asAdministrator(const std::string &pkexec, const std::vector<std::string> &command);

/// Why the command was not run or did not succeed, in one translated line.
QString describeFailure(const ChildProcessEnd &end);

/// What the program wrote, as one line of valid text without control characters.
std::string oneLine(const std::string &output);

} // namespace ambertide
