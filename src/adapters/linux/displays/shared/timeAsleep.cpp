#include "adapters/linux/displays/shared/timeAsleep.h"

#include <ctime>

namespace ambertide {

std::chrono::nanoseconds timeAsleep()
{
    const auto now = [](clockid_t clock) {
        timespec time{};
        clock_gettime(clock, &time);
        return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
    };
    const auto awake = now(CLOCK_MONOTONIC);
    return now(CLOCK_BOOTTIME) - awake;
}

} // namespace ambertide
