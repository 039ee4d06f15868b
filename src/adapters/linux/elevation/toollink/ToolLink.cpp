#include "adapters/linux/elevation/toollink/ToolLink.h"

#include <unistd.h>

#include <system_error>

namespace ambertide::toolLink {

namespace fs = std::filesystem;

namespace {

bool isFolder(const fs::path &path)
{
    std::error_code ignored;
    return fs::is_directory(fs::symlink_status(path, ignored));
}

} // namespace

Status install(const fs::path &tool, const fs::path &folder)
{
    std::error_code error;
    if (!fs::is_regular_file(fs::symlink_status(tool, error)) || ::access(tool.c_str(), X_OK) != 0)
        return NoTool;
    const auto link = folder / name;
    const auto fresh = folder / ".ambertide-new";
    fs::create_directories(folder, error);
    if (isFolder(link))
        return FolderInWay;
    fs::remove(fresh, error);
    fs::create_symlink(tool, fresh, error);
    if (error)
        return Failed;
    fs::rename(fresh, link, error);
    if (!error)
        return Done;
    std::error_code ignored;
    fs::remove(fresh, ignored);
    return Failed;
}

Status uninstall(const fs::path &folder)
{
    const auto link = folder / name;
    if (isFolder(link))
        return FolderInWay;
    std::error_code error;
    fs::remove(link, error);
    return error ? Failed : Done;
}

} // namespace ambertide::toolLink
