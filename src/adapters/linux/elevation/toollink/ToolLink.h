#pragma once

#include <filesystem>

namespace ambertide {

/// The link that makes the command-line tool a command for everybody on this system.
namespace toolLink {

/// The outcome, as the exit status of the program that makes the link. None is one of pkexec's own.
enum Status {
    Done = 0,
    Failed = 1,
    WrongUsage = 2,
    NoTool = 3,     ///< the tool is not beside the running program
    FolderInWay = 4 ///< there is a folder of the link's name
};

inline constexpr const char *name = "ambertide";

/// Puts a link to `tool` into `folder`, which is created if it is missing. Whatever file or link has that name is
/// replaced, even a link to a folder, which is not followed.
Status install(const std::filesystem::path &tool, const std::filesystem::path &folder);
/// Removes whatever file or link has that name. Done also where there is none.
Status uninstall(const std::filesystem::path &folder);

} // namespace toolLink

} // namespace ambertide
