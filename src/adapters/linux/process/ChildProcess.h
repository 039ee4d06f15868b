#pragma once

#include "adapters/linux/process/FileDescriptor.h"

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

namespace ambertide {

/// What a program is started with. A descriptor below zero stands for /dev/null.
struct ChildStart
{
    /// The program, a path or a name to be found on PATH, and what it is told.
    std::vector<std::string> arguments;
    std::optional<std::vector<std::string>> environment = {}; ///< nothing: the same as this process's
    int input = -1;
    int output = -1;
    int errorOutput = -1;
    /// In a session of its own, away from the terminal, and with every signal blocked.
    bool isDetached = false;
};

/// Starts a program that inherits no descriptor but these three. Whatever the calling thread blocks, the program starts
/// with no signal blocked, unless it is detached, and with SIGPIPE and SIGCHLD at their default, the latter here, too.
/// Returns the system's error number; 0 when it runs. `process` is then a child of the calling process, which has to
/// wait for it. Any thread.
int startChild(const ChildStart &start, pid_t &process);

/// How a program came to its end.
struct ChildProcessEnd
{
    enum class Kind {
        NotStarted, ///< `code` is the system's error number
        Exited,     ///< `code` is the exit status
        Signalled,  ///< `code` is the signal's number
        Cancelled
    };

    bool isExit(int status) const { return kind == Kind::Exited && code == status; }

    Kind kind = Kind::NotStarted;
    int code = 0;
    std::string output; ///< what was kept of it
};

/// A program that runs beside this process until it ends by itself, even when this object is gone, and the last that it
/// wrote. One thread at a time.
class ChildProcess
{
public:
    enum class Kept { ErrorOutput, AllOutput };
    static constexpr std::size_t mostKept = 4096; ///< bytes

    /// Starts it with a pipe in the place of the outputs that are kept.
    ChildProcess(ChildStart start, Kept kept);

    /// Becomes readable when the program has ended; below zero when it was not started.
    int endDescriptor() const { return m_end.get(); }
    /// Waits for the end, whoever else still holds the pipe; for no longer than it takes the descriptor `cancellation`
    /// to become readable, upon which the program is asked to end. Once.
    ChildProcessEnd wait(int cancellation = -1);

private:
    void readOutput();

    pid_t m_process = 0;
    int m_error = 0;
    FileDescriptor m_end;
    FileDescriptor m_pipe;
    std::string m_output;
};

} // namespace ambertide
