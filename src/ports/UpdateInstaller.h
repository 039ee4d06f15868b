#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

namespace ambertide {

/// A package and what the feed says of it.
struct UpdatePackage
{
    std::filesystem::path path;
    std::string signature; ///< base64
    std::string version;   ///< the one that people read
};

/// Port: puts a new version of this application in the place of the present one, as administrator. Main thread.
class UpdateInstaller
{
public:
    enum class Outcome {
        Installed = 0,
        Dismissed,     ///< the person closed the prompt for a password
        NotAuthorised, ///< not allowed, or nothing here can ask for a password
        BadSignature,
        WrongPackage, ///< of another program, for another machine, or of another version than the feed says
        NotNewer,
        NotAPackage, ///< this application was not installed as one
        NoRoom,
        Busy, ///< something else is being installed
        Failed,
    };
    struct Result
    {
        Outcome outcome;
        std::string message; ///< one technical line, not translated; may be empty
    };

    virtual ~UpdateInstaller() = default;

    /// Whoever installs verifies the signature itself, over the very bytes that it installs. Returns at once; `done` is
    /// called once, on the main thread, unless the installer is destroyed before. An installation that has begun goes
    /// on even then. Not while another is under way.
    virtual void install(const UpdatePackage &package, std::function<void(Result)> done) = 0;
};

} // namespace ambertide
