#include "adapters/linux/displays/kwin/settings/giveNightLightBack.h"

#include <unistd.h>

namespace ambertide {

namespace {

constexpr int mostLooks = 40;

bool isNearlyNeutral(int temperature)
{
    return temperature < neutralNightLight && temperature >= neutralNightLight - largestIgnoredChange;
}

} // namespace

NightLightLoan::End giveNightLightBack(NightLightLoan &loan, std::chrono::milliseconds patience,
                                       const NightLightAccess &kwin)
{
    const auto end = loan.giveBack(patience);
    if (end != NightLightLoan::End::givenBack)
        return end;
    kwin.announce();
    auto state = kwin.state();
    // On the way to the warmest temperature KWin makes its first steps 20 ms apart.
    if (!state || state->isRunning || !isNearlyNeutral(state->temperature) || !loan.borrow(warmestNightLight))
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
