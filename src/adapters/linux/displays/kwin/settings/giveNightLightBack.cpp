#include "adapters/linux/displays/kwin/settings/giveNightLightBack.h"

#include <unistd.h>

namespace ambertide {

namespace {

constexpr int neutral = 6500; ///< kelvin; what KWin shows with its Night Light off
constexpr int warmest = 1000; ///< to which its first steps follow each other in 20 ms
constexpr int largestIgnoredChange = 50;
constexpr int mostLooks = 40;

bool isNearlyNeutral(int temperature) { return temperature < neutral && temperature >= neutral - largestIgnoredChange; }

} // namespace

NightLightLoan::End giveNightLightBack(NightLightLoan &loan, std::chrono::milliseconds patience,
                                       const NightLightAccess &kwin)
{
    const auto end = loan.giveBack(patience);
    if (end != NightLightLoan::End::givenBack)
        return end;
    kwin.announce();
    auto state = kwin.state();
    if (!state || state->isRunning || !isNearlyNeutral(state->temperature) || !loan.borrow(warmest))
        return end;
    kwin.announce();
    for (int looks = 0; looks < mostLooks && state && isNearlyNeutral(state->temperature); ++looks) {
        usleep(4000);
        state = kwin.state();
    }
    const auto secondEnd = loan.giveBack(patience);
    kwin.announce();
    return secondEnd;
}

} // namespace ambertide
