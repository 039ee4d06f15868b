#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

namespace ambertide {

/// A package and what the feed says about it.
struct UpdatePackage
{
    std::filesystem::path path;
    std::string signature; ///< base64
    std::string version;   ///< as shown to the user
};

/// Port: replaces this application with a new version, with administrator rights. Main thread.
class UpdateInstaller
{
public:
    enum class Outcome {
        Installed = 0,
        Dismissed,     ///< the user closed the prompt for a password
        NotAuthorised, ///< the user may not do this, or this system has nothing that asks for a password
        BadSignature,
        WrongPackage, ///< of another program, for another machine, or of another version than the feed says
        NotNewer,     ///< than what has been installed meanwhile
        NotAPackage,  ///< this application was not installed as one
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

    /// What runs as administrator verifies the signature itself, over the very bytes that it installs. Returns at once;
    /// `done` is called once, on the main thread, unless the installer is destroyed first. Even then an installation
    /// that has begun is finished. Not to be called while another is under way.
    virtual void install(const UpdatePackage &package, std::function<void(Result)> done) = 0;
};

} // namespace ambertide
