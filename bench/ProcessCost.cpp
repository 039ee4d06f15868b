#include "ProcessCost.h"

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace ambertide {

namespace {

std::string folderOf(pid_t process) { return "/proc/" + std::to_string(process); }

std::int64_t numberAfter(const std::string &file, const std::string &label)
{
    std::ifstream lines(file);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(label))
            return std::stoll(line.substr(label.size()));
    }
    return 0;
}

} // namespace

ProcessCost ProcessCost::of(pid_t process)
{
    ProcessCost cost;
    for (const auto &task : std::filesystem::directory_iterator(folderOf(process) + "/task")) {
        std::int64_t onCpu = 0;
        std::ifstream(task.path() / "schedstat") >> onCpu;
        cost.cpuTime += std::chrono::nanoseconds(onCpu);
        cost.wakeUps += numberAfter(task.path() / "status", "voluntary_ctxt_switches:");
    }
    return cost;
}

std::int64_t memoryOf(pid_t process, const char *line)
{
    return numberAfter(folderOf(process) + "/smaps_rollup", line);
}

} // namespace ambertide
