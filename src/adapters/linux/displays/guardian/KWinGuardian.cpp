#include "adapters/linux/displays/guardian/KWinGuardian.h"

#include "adapters/linux/displays/guardian/GuardianChannel.h"
#include "adapters/linux/displays/kwin/announceNightLight.h"
#include "adapters/linux/displays/kwin/settings/NightLightLoan.h"

#include <dlfcn.h>

namespace ambertide {

namespace {

/// The application and its guardian die at the same time when the whole session does; another copy never lets go.
constexpr std::chrono::milliseconds patienceForLoan{400};

template <typename Function>
Function *find(void *library, const char *name)
{
    return reinterpret_cast<Function *>(dlsym(library, name));
}

/// The library is loaded only now: it would cost more memory than all else that a guardian needs while it waits.
void announce()
{
    void *const library = dlopen("libsystemd.so.0", RTLD_NOW);
    if (!library)
        return;
    const auto open = find<decltype(sd_bus_open_user)>(library, "sd_bus_open_user");
    const auto emit = find<decltype(sd_bus_emit_signal)>(library, "sd_bus_emit_signal");
    const auto finish = find<decltype(sd_bus_flush_close_unref)>(library, "sd_bus_flush_close_unref");
    sd_bus *bus = nullptr;
    if (!open || !emit || !finish || open(&bus) < 0)
        return;
    announceNightLight(emit, bus);
    finish(bus);
}

} // namespace

bool guardKWin(const char *state, int channel)
{
    if (!GuardianChannel(channel).awaitEnd())
        return true;
    auto files = NightLightLoan::filesOfUser();
    files.state = state;
    if (NightLightLoan(std::move(files)).giveBack(patienceForLoan) == NightLightLoan::End::givenBack)
        announce();
    return true;
}

} // namespace ambertide
