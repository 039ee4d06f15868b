#include "adapters/linux/displays/mutter/MutterRestore.h"
#include "adapters/linux/displays/mutter/TintName.h"

#include <algorithm>
#include <cstdlib>
#include <thread>

namespace {

using namespace ambertide;
using namespace std::chrono_literals;

/// Where all services answer, a tenth of it is enough. Nobody waits for this program, and restoring a display late is
/// better than restoring it without its calibration.
constexpr auto patience = 3s;
constexpr auto betweenLooks = 3ms;
constexpr auto patienceForClaim = 150ms;

/// Waits until the bus has dropped the application's connection, since calls that it left behind may be on their way to
/// mutter until then. False when another copy tints now.
bool awaitEndOfClaim(sd_bus *bus, GuardianMessage claim, SdBusDeadline deadline)
{
    const auto latest = std::min(deadline, std::chrono::steady_clock::now() + patienceForClaim);
    while (std::chrono::steady_clock::now() < latest) {
        const auto owner = ownerOfName(bus, tint_name::name, latest);
        if (!owner || owner->empty())
            return true;
        if (tint_name::claimOf(*owner) != claim)
            return false;
        std::this_thread::sleep_for(betweenLooks);
    }
    return true;
}

} // namespace

/// What the guardian of GNOME's displays becomes when the application has ended. Argument: the claim under which it
/// tinted.
int main(int argc, char **argv)
{
    if (argc != 2)
        return EXIT_FAILURE;
    const auto deadline = std::chrono::steady_clock::now() + patience;
    const auto sessionBus = openSdBus(SdBusKind::session);
    const auto systemBus = openSdBus(SdBusKind::system);
    if (!sessionBus || !waitUntilReady(sessionBus.get(), deadline))
        return EXIT_FAILURE;
    const auto claim = static_cast<GuardianMessage>(std::strtoul(argv[1], nullptr, 10));
    if (!awaitEndOfClaim(sessionBus.get(), claim, deadline))
        return EXIT_SUCCESS;
    return restoreMutterDisplays(sessionBus.get(), systemBus.get(), deadline, IfUnknown::leaveOut) ? EXIT_SUCCESS
                                                                                                   : EXIT_FAILURE;
}
