#include "adapters/linux/displays/mutter/DisplayConfig.h"

#include "adapters/linux/bus/SdBusReader.h"

#include <algorithm>
#include <utility>

namespace ambertide::display_config {

namespace {

constexpr std::size_t mostCrtcs = 64;
constexpr std::size_t mostOutputs = 256;
constexpr std::size_t smallestTable = 256;
constexpr std::size_t largestTable = 4096;

SdBusMessage newCall(sd_bus *bus, const char *method)
{
    sd_bus_message *call = nullptr;
    sd_bus_message_new_method_call(bus, &call, service, path, interface, method);
    if (call)
        sd_bus_message_set_auto_start(call, 0);
    return SdBusMessage(call);
}

bool appendTable(sd_bus_message *call, const std::uint16_t *levels, std::uint16_t size)
{
    return sd_bus_message_append_array(call, 'q', levels, size * sizeof *levels) >= 0;
}

bool readCrtc(sd_bus_message *reply, SdBusReader &reader, Crtc &crtc)
{
    std::int32_t mode = -1;
    if (sd_bus_message_enter_container(reply, 'r', "uxiiiiiuaua{sv}") <= 0 ||
        sd_bus_message_read(reply, "uxiiiiiu", &crtc.identifier, nullptr, nullptr, nullptr, nullptr, nullptr, &mode,
                            nullptr) <= 0)
        return false;
    crtc.isActive = mode >= 0;
    return reader.skip() && reader.skip() && sd_bus_message_exit_container(reply) >= 0;
}

bool readOutput(sd_bus_message *reply, SdBusReader &reader, std::vector<Crtc> &crtcs)
{
    std::int32_t driver = -1;
    if (sd_bus_message_enter_container(reply, 'r', "uxiausauaua{sv}") <= 0 ||
        sd_bus_message_read(reply, "uxi", nullptr, nullptr, &driver) <= 0 || !reader.skip())
        return false;
    auto connector = reader.text();
    for (int field = 0; field < 3; ++field) {
        if (!connector || !reader.skip())
            return false;
    }
    const auto crtc = std::ranges::find_if(
        crtcs, [driver](const Crtc &candidate) { return std::cmp_equal(candidate.identifier, driver); });
    if (crtc != crtcs.end() && crtc->connector.empty())
        crtc->connector = *std::move(connector);
    return sd_bus_message_exit_container(reply) >= 0;
}

} // namespace

SdBusMessage getResources(sd_bus *bus) { return newCall(bus, "GetResources"); }

SdBusMessage getCrtcGamma(sd_bus *bus, std::uint32_t serial, std::uint32_t crtc)
{
    auto call = newCall(bus, "GetCrtcGamma");
    return call && sd_bus_message_append(call.get(), "uu", serial, crtc) >= 0 ? std::move(call) : nullptr;
}

SdBusMessage setCrtcGamma(sd_bus *bus, std::uint32_t serial, std::uint32_t crtc, const GammaRamp &ramp)
{
    const auto size = ramp.size();
    auto call = size >= 2 ? newCall(bus, "SetCrtcGamma") : nullptr;
    const bool isWhole = call && sd_bus_message_append(call.get(), "uu", serial, crtc) >= 0 &&
                         appendTable(call.get(), ramp.red(), size) && appendTable(call.get(), ramp.green(), size) &&
                         appendTable(call.get(), ramp.blue(), size);
    return isWhole ? std::move(call) : nullptr;
}

std::optional<Resources> readResources(sd_bus_message *reply)
{
    Resources resources{};
    SdBusReader reader(reply);
    if (!reply || sd_bus_message_is_method_error(reply, nullptr) != 0 ||
        sd_bus_message_read_basic(reply, 'u', &resources.serial) <= 0 ||
        sd_bus_message_enter_container(reply, 'a', "(uxiiiiiuaua{sv})") <= 0)
        return std::nullopt;
    while (sd_bus_message_at_end(reply, 0) == 0) {
        if (resources.crtcs.size() == mostCrtcs || !readCrtc(reply, reader, resources.crtcs.emplace_back()))
            return std::nullopt;
    }
    if (sd_bus_message_exit_container(reply) < 0 ||
        sd_bus_message_enter_container(reply, 'a', "(uxiausauaua{sv})") <= 0)
        return std::nullopt;
    for (std::size_t outputs = 0; sd_bus_message_at_end(reply, 0) == 0; ++outputs) {
        if (outputs == mostOutputs || !readOutput(reply, reader, resources.crtcs))
            return std::nullopt;
    }
    return resources;
}

std::optional<Gamma> readGamma(sd_bus_message *reply)
{
    Gamma gamma;
    if (!reply || sd_bus_message_is_method_error(reply, nullptr) != 0)
        return std::nullopt;
    for (auto &table : gamma) {
        const void *levels = nullptr;
        std::size_t bytes = 0;
        if (sd_bus_message_read_array(reply, 'q', &levels, &bytes) <= 0)
            return std::nullopt;
        table = {static_cast<const std::uint16_t *>(levels), bytes / sizeof(std::uint16_t)};
    }
    return gamma;
}

std::uint16_t tableSize(const Gamma &gamma)
{
    return static_cast<std::uint16_t>(std::clamp(gamma[0].size(), smallestTable, largestTable));
}

bool isSame(const Gamma &gamma, const GammaRamp &ramp)
{
    const auto table = [size = ramp.size()](const std::uint16_t *levels) { return std::span(levels, size); };
    return std::ranges::equal(gamma[0], table(ramp.red())) && std::ranges::equal(gamma[1], table(ramp.green())) &&
           std::ranges::equal(gamma[2], table(ramp.blue()));
}

} // namespace ambertide::display_config
