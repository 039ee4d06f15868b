#include "adapters/linux/displays/guardian/MutterGuardian.h"

#include "adapters/linux/displays/guardian/GuardianChannel.h"
#include "adapters/linux/displays/mutter/MutterRestore.h"
#include "adapters/linux/displays/mutter/TintName.h"

#include <algorithm>
#include <thread>

namespace ambertide {

namespace {

using namespace std::chrono_literals;

constexpr auto betweenLooks = 3ms;
constexpr auto patienceForClaim = 150ms;

/// Until the bus has dropped the application's connection, calls that it left behind may still be on their way to
/// mutter. False when another copy tints now.
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

bool guardMutter(const char * /*where*/, int descriptor)
{
    GuardianChannel channel(descriptor);
    if (!channel.awaitEnd())
        return true;
    const auto deadline = std::chrono::steady_clock::now() + longestMutterRestore;
    const auto bus = openSdBus(SdBusKind::session);
    if (!bus || !waitUntilReady(bus.get(), deadline))
        return false;
    if (awaitEndOfClaim(bus.get(), channel.told(), deadline))
        restoreMutterDisplays(bus.get(), deadline);
    return true;
}

} // namespace ambertide
