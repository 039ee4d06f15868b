#pragma once

#include <string>
#include <vector>

namespace ambertide {

/// How a program ended that runChildProcess() ran.
struct ChildProcessEnd
{
    enum class Kind {
        NotStarted, ///< `code` is the system's error number
        Exited,     ///< `code` is the exit status
        Signalled,  ///< `code` is the signal's number
        Cancelled
    };

    Kind kind = Kind::NotStarted;
    int code = 0;
    std::string errorOutput; ///< the last few kilobytes that it wrote to standard error
};

/// Runs a program, found on PATH, with no input and its output thrown away, and waits for its end; for no longer than
/// it takes the descriptor `cancellation` to become readable, upon which the program is asked to end. Any thread.
///
/// The program is a child of the calling thread, starts with every signal unblocked at its default, and inherits no
/// descriptor. One that writes errors without end loses its standard error and so, as a rule, ends.
ChildProcessEnd runChildProcess(const std::vector<std::string> &arguments, const std::vector<std::string> &environment,
                                int cancellation);

} // namespace ambertide
