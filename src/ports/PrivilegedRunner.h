#pragma once

#include <optional>
#include <string>

namespace ambertide {

struct PrivilegedResult
{
    enum class Status {
        Succeeded,
        Failed,  ///< refused by the person or the system, or the command itself ended with an error
        Rejected ///< nothing was asked or run: the system cannot take this command's text
    };

    Status status = Status::Succeeded;
    std::optional<std::string> message; ///< of a failure: one short text for a person, where the system has one
};

/// Port: runs one shell command with administrator rights, which the system's own prompt asks for. Any thread.
class PrivilegedRunner
{
public:
    virtual ~PrivilegedRunner() = default;

    /// Returns when the prompt has been answered and the command has ended, which may take minutes. So never call it on
    /// the main thread, nor on a thread that other tasks run on.
    virtual PrivilegedResult run(const std::string &command) = 0;

    /// Takes back a prompt that is still open and makes every run, also later ones, fail at once; for the end of the
    /// process. A command that runs already is left to end by itself.
    virtual void cancel() = 0;
};

} // namespace ambertide
