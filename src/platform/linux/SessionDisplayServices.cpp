#include "platform/linux/SessionDisplayServices.h"

#include "platform/Console.h"
#include "platform/linux/RandrDisplayServices.h"
#include "platform/linux/UnavailableDisplayServices.h"

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
