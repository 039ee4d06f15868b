#include "adapters/linux/displays/guardian/WlrootsGuardian.h"

#include "adapters/linux/displays/guardian/GuardianChannel.h"
#include "adapters/linux/displays/wlroots/WlrootsCompositor.h"

#include <thread>

namespace ambertide {

using namespace std::chrono_literals;

namespace {

/// The compositor may hear of us before it hears of the application's end, and refuse us the controls until then.
constexpr auto betweenAttempts = 10ms;
/// Another copy that has taken over keeps its controls, and is not to be asked for them without end.
constexpr auto longestRefusal = 400ms;
/// For each answer of a compositor that is busy.
constexpr auto patience = 10s;

} // namespace

bool guardWlroots(const char *where, int channel)
{
    using Clock = WlrootsCompositor::Clock;
    if (!GuardianChannel(channel).awaitEnd())
        return true;
    WlrootsCompositor compositor(where, betweenAttempts);
    const auto deadline = Clock::now() + longestRefusal;
    while (!compositor.takeControls(patience) && Clock::now() < deadline)
        std::this_thread::sleep_for(betweenAttempts);
    return compositor.restore(patience);
}

} // namespace ambertide
