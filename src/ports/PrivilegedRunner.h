#pragma once

#include <QString>

#include <optional>
#include <string>

namespace ambertide {

struct PrivilegedResult
{
    enum class Status {
        Succeeded,
        Failed,  ///< refused by the user or the system, or the command itself ended with an error
        Rejected ///< nothing was asked or run: the system does not accept this command
    };

    Status status = Status::Succeeded;
    std::optional<QString> message; ///< the reason of a failure, in the user's language, if it is known
};

/// Port: runs one shell command with administrator rights, which the system's own prompt asks for. Any thread.
class PrivilegedRunner
{
public:
    virtual ~PrivilegedRunner() = default;

    /// Returns when the prompt has been answered and the command has ended, which may take minutes: not for the main
    /// thread, nor for a thread that other tasks run on. A system may accept only the commands that this application
    /// uses, and do by other means what they say.
    virtual PrivilegedResult run(const std::string &command) = 0;

    /// For the end of the process: withdraws a prompt that is still open, and makes its run and every later one fail at
    /// once. A command that is already running is left to finish.
    virtual void cancel() = 0;
};

} // namespace ambertide
