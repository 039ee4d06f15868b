#include "adapters/linux/displays/mutter/NightLight.h"

#include "adapters/linux/bus/CallBatch.h"

#include <dlfcn.h>

#include <cstdint>

namespace ambertide::night_light {

namespace {

constexpr std::uint32_t neutral = 6500;
constexpr std::array<double, 3> white{1, 1, 1};

/// Computed by the function that mutter itself uses, from a library that GNOME brings along. The library is large and
/// rarely needed, so it is loaded on first use, and then kept.
std::array<double, 3> blackBody(std::uint32_t temperature)
{
    constexpr int alongThePlanckianLocus = 1;
    using Function = int (*)(double temperature, std::array<double, 3> *colour, int flags);
    void *const library = dlopen("libcolord.so.2", RTLD_NOW | RTLD_LOCAL);
    void *const symbol = library ? dlsym(library, "cd_color_get_blackbody_rgb_full") : nullptr;
    auto colour = white;
    if (!symbol || reinterpret_cast<Function>(symbol)(temperature, &colour, alongThePlanckianLocus) == 0)
        return white;
    return colour;
}

} // namespace

SdBusMessage askForTemperature(sd_bus *bus) { return getProperty(bus, service, path, interface, temperatureProperty); }

std::array<double, 3> whitePoint(const SdBusMessage &reply)
{
    std::uint32_t temperature = neutral;
    if (!enterProperty(reply, "u") || sd_bus_message_read_basic(reply.get(), 'u', &temperature) <= 0)
        return white;
    // Mutter ignores temperatures outside this range.
    return temperature != neutral && temperature >= 1000 && temperature <= 10000 ? blackBody(temperature) : white;
}

} // namespace ambertide::night_light
