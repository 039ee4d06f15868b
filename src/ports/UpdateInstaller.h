#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

namespace ambertide {

/// Port: puts a new version of this application in the place of the present one, as administrator. Main thread.
class UpdateInstaller
{
public:
    enum class Outcome {
        Installed,
        Dismissed,     ///< the person closed the prompt for a password
        NotAuthorised, ///< not allowed, or nothing here can ask for a password
        Failed,        ///< the package was refused or would not install
    };
    struct Result
    {
        Outcome outcome;
        std::string message; ///< one line that says why not; empty when there is nothing to say
    };

    virtual ~UpdateInstaller() = default;

    /// Whoever installs verifies `signature` (base64) itself, over the very bytes that it installs. Returns at once;
    /// `done` is called once, on the main thread, unless the installer is destroyed before. An installation that has
    /// begun goes on even then. Not while another is under way.
    virtual void install(const std::filesystem::path &package, std::string_view signature,
                         std::function<void(Result)> done) = 0;
};

} // namespace ambertide
