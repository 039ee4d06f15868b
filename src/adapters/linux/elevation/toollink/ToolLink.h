#pragma once

#include <filesystem>

namespace ambertide {

/// The link that makes the command-line tool a command for everybody on this system.
namespace toolLink {

/// Of the program that makes it, as exit statuses. They keep clear of pkexec's own.
enum Status {
    Done = 0,
    Failed = 1,
    WrongUsage = 2,
    NoTool = 3,     ///< beside the running program
    FolderInWay = 4 ///< there is a folder of the link's name
};

inline constexpr const char *name = "ambertide";

/// Puts a link to `tool` into `folder`, which is made where it is missing, in the place of whatever file or link has
/// that name. A link to a folder is replaced, not followed.
Status install(const std::filesystem::path &tool, const std::filesystem::path &folder);
/// Takes away whatever file or link has that name; done where there is none.
Status uninstall(const std::filesystem::path &folder);

} // namespace toolLink

} // namespace ambertide
