#include "adapters/linux/displays/SessionDisplayServices.h"

#include "adapters/linux/displays/UnavailableDisplayServices.h"
#include "adapters/linux/displays/randr/RandrDisplayServices.h"
#include "base/Console.h"

#include <cstdlib>
#include <string>

namespace ambertide {

namespace {

std::string environmentValue(const char *name)
{
    const char *const value = std::getenv(name);
    return value ? value : "";
}

} // namespace

std::unique_ptr<DisplayServices> makeSessionDisplayServices(const std::filesystem::path &programs)
{
    if (!environmentValue("WAYLAND_DISPLAY").empty()) {
        console::print("Displays cannot be tinted in this Wayland session yet; Ambertide runs on without.");
        return std::make_unique<UnavailableDisplayServices>();
    }
    const auto display = environmentValue("DISPLAY");
    if (display.empty()) {
        console::print("There are no displays to tint: neither WAYLAND_DISPLAY nor DISPLAY is set.");
        return std::make_unique<UnavailableDisplayServices>();
    }
    return std::make_unique<RandrDisplayServices>(display, programs / "AmbertideGuardian");
}

} // namespace ambertide
