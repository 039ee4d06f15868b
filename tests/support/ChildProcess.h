#pragma once

#include <sys/types.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace ambertide {

/// The first child, of any thread of a process, with this name; 0 when there is none.
inline pid_t childOf(pid_t process, const std::string &name)
{
    std::error_code error;
    for (const auto &thread :
         std::filesystem::directory_iterator("/proc/" + std::to_string(process) + "/task", error)) {
        std::ifstream children(thread.path() / "children");
        for (pid_t child = 0; children >> child;) {
            std::string comm;
            std::ifstream("/proc/" + std::to_string(child) + "/comm") >> comm;
            if (comm == name.substr(0, 15)) // as many characters as the kernel keeps
                return child;
        }
    }
    return 0;
}

} // namespace ambertide
