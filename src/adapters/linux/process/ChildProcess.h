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
    /// The program, by path or by a name to be found on PATH, followed by its arguments.
    std::vector<std::string> arguments;
    std::optional<std::vector<std::string>> environment = {}; ///< nothing: the same as this process's
    int input = -1;
    int output = -1;
    int errorOutput = -1;
    /// Starts it in a session of its own, away from the terminal, with every signal blocked.
    bool isDetached = false;
};

/// Starts a program that inherits no descriptors but these three. Unless detached it starts with no signal blocked,
/// whatever the calling thread blocks. SIGPIPE and SIGCHLD have their default actions in it; if this process ignores
/// SIGCHLD, that is set back to its default here, too. Returns 0 or the system's error number. On success `process` is
/// a child of this process, which has to wait for it. Any thread.
int startChild(const ChildStart &start, pid_t &process);

/// How a program ended.
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
    std::string output; ///< the last of it, as far as it was kept
};

/// A child process and the last part of its output. It runs until it ends by itself, even if this object is destroyed
/// before. One thread at a time.
class ChildProcess
{
public:
    enum class Kept { ErrorOutput, AllOutput };
    static constexpr std::size_t mostKept = 4096; ///< bytes

    /// Starts the program, with a pipe in place of the outputs that are to be kept.
    ChildProcess(ChildStart start, Kept kept);

    /// Becomes readable when the program has ended; below zero when it was not started.
    int endDescriptor() const { return m_end.get(); }
    /// Waits for the program to end, even if others hold the pipe open for longer. When the descriptor `cancellation`
    /// becomes readable first, asks the program to end (SIGTERM) and returns at once. To be called once.
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
