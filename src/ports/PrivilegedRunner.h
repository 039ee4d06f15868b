#pragma once

#include <QString>

#include <optional>
#include <string>

namespace ambertide {

struct PrivilegedResult
{
    enum class Status {
        Succeeded,
        Failed,  ///< refused by the person or the system, or the command itself ended with an error
        Rejected ///< nothing was asked or run: the system does not take this command
    };

    Status status = Status::Succeeded;
    std::optional<QString> message; ///< of a failure: why, in the person's language, where that is known
};

/// Port: runs one shell command with administrator rights, which the system's own prompt asks for. Any thread.
class PrivilegedRunner
{
public:
    virtual ~PrivilegedRunner() = default;

    /// Returns when the prompt has been answered and the command has ended, which may take minutes. So never call it on
    /// the main thread, nor on a thread that other tasks run on. A system may know just the commands that this
    /// application has use for, and do what they say by other means.
    virtual PrivilegedResult run(const std::string &command) = 0;

    /// Takes back a prompt that is still open and makes every run, also later ones, fail at once; for the end of the
    /// process. A command that runs already is left to end by itself.
    virtual void cancel() = 0;
};

} // namespace ambertide
