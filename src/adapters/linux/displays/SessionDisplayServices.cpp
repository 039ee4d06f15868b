#include "adapters/linux/displays/SessionDisplayServices.h"

#include "adapters/linux/displays/DisplayBackends.h"
#include "adapters/linux/displays/OwnScope.h"
#include "base/Console.h"

#include <cstdlib>

namespace ambertide {

namespace {

std::string environmentValue(const char *name)
{
    const char *const value = std::getenv(name);
    return value ? value : "";
}

} // namespace

std::unique_ptr<BackendDisplayServices> makeSessionDisplayServices(const std::filesystem::path &programs)
{
    const DisplaySession session{.waylandDisplay = environmentValue("WAYLAND_DISPLAY"),
                                 .x11Display = environmentValue("DISPLAY"),
                                 .guardian = programs / "AmbertideGuardian"};
    return std::make_unique<BackendDisplayServices>(
        [session, choice = environmentValue("AMBERTIDE_DISPLAY")] {
            auto chosen = chooseDisplayBackend(session, choice);
            if (!chosen.refusal.empty())
                console::print(chosen.refusal);
            return std::move(chosen.backend);
        },
        moveToOwnScope);
}

} // namespace ambertide
