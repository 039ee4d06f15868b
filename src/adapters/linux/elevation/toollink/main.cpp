// Makes or removes the link to the command-line tool. Runs as root, called through pkexec by the application, which is
// not trusted: it is told nothing but which of the two, and finds the tool in the bundle that it belongs to itself.

#include "adapters/linux/elevation/toollink/ToolLink.h"

#include <stdlib.h>
#include <sys/stat.h>

#include <string_view>
#include <system_error>

int main(int argumentCount, char *arguments[])
{
    namespace link = ambertide::toolLink;
    constexpr const char *folder = "/usr/local/bin";
    clearenv();
    umask(0022);
    const std::string_view command = argumentCount == 2 ? arguments[1] : "";
    if (command == "uninstall")
        return link::uninstall(folder);
    if (command != "install")
        return link::WrongUsage;
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    const auto programs = program.parent_path();
    if (error || !programs.string().ends_with("/Contents/MacOS"))
        return link::NoTool;
    return link::install(programs / "AmbertideCLI", folder);
}
