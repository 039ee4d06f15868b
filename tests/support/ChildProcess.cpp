#include "support/ChildProcess.h"

#include <filesystem>
#include <fstream>
#include <string>

namespace ambertide {

pid_t childOf(pid_t process, const char *name)
{
    std::error_code error;
    for (const auto &thread :
         std::filesystem::directory_iterator("/proc/" + std::to_string(process) + "/task", error)) {
        std::ifstream children(thread.path() / "children");
        for (pid_t child = 0; children >> child;) {
            std::string comm;
            std::ifstream("/proc/" + std::to_string(child) + "/comm") >> comm;
            if (comm == std::string(name).substr(0, 15)) // as many characters as the kernel keeps
                return child;
        }
    }
    return 0;
}

} // namespace ambertide
