#include "adapters/linux/displays/guardian/WlrootsGuardian.h"

#include "adapters/linux/displays/guardian/GuardianChannel.h"
#include "adapters/linux/displays/wlroots/WlrootsCompositor.h"

#include <poll.h>

namespace ambertide {

using namespace std::chrono_literals;

namespace {

/// The displays are to be themselves again half a second after the application's end.
constexpr auto patience = 400ms;
/// The compositor may hear of us before it hears of the application's end, and refuse us the controls until then.
constexpr auto betweenAttempts = 10ms;

} // namespace

bool guardWlroots(const char *where, int channel)
{
    using Clock = WlrootsCompositor::Clock;
    if (!GuardianChannel(channel).awaitEnd())
        return true;
    WlrootsCompositor compositor(where, betweenAttempts);
    const auto deadline = Clock::now() + patience;
    // Another copy that has taken over keeps its controls: those we are refused to the end.
    while (compositor.state() == WlrootsCompositor::State::usable && !compositor.askForControls() &&
           Clock::now() < deadline) {
        pollfd source{compositor.descriptor(), POLLIN, 0};
        poll(&source, 1, static_cast<int>(std::chrono::milliseconds(betweenAttempts).count()));
        compositor.takeEvents();
    }
    return compositor.restore(patience);
}

} // namespace ambertide
