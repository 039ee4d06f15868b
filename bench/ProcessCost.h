#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdint>

namespace ambertide {

/// What a process has cost since its start, as the kernel counts it over all of its threads.
struct ProcessCost
{
    std::chrono::nanoseconds cpuTime{0};
    std::int64_t wakeUps = 0; ///< how often a thread that had gone to sleep was run again

    static ProcessCost of(pid_t process);
    ProcessCost operator-(const ProcessCost &earlier) const
    {
        return {cpuTime - earlier.cpuTime, wakeUps - earlier.wakeUps};
    }
};

/// A line of /proc/<process>/smaps_rollup, in KiB; 0 when it is not there.
std::int64_t memoryOf(pid_t process, const char *line);

} // namespace ambertide
