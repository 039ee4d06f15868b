#include "adapters/linux/displays/mutter/ColourProfiles.h"

#include "adapters/linux/displays/mutter/CallBatch.h"
#include "adapters/linux/displays/mutter/VideoCardGamma.h"

namespace ambertide {

namespace {

constexpr char service[] = "org.freedesktop.ColorManager";

SdBusMessage findDevice(sd_bus *bus, const std::string &connector)
{
    sd_bus_message *call = nullptr;
    sd_bus_message_new_method_call(bus, &call, service, "/org/freedesktop/ColorManager", service,
                                   "FindDeviceByProperty");
    if (call) {
        sd_bus_message_set_auto_start(call, 0);
        sd_bus_message_append(call, "ss", "XRANDR_name", connector.c_str());
    }
    return SdBusMessage(call);
}

/// Goes on from what was found: asks for a property of each object, where there is one.
std::vector<SdBusMessage> getProperties(sd_bus *bus, const std::vector<std::string> &objects, const char *interface,
                                        const char *name, SdBusDeadline deadline)
{
    std::vector<SdBusMessage> calls;
    for (const auto &object : objects)
        calls.push_back(object.empty() ? nullptr : getProperty(bus, service, object.c_str(), interface, name));
    return callTogether(bus, calls, deadline);
}

std::string readText(sd_bus_message *reply, char type)
{
    const char *text = nullptr;
    return reply && sd_bus_message_read_basic(reply, type, static_cast<void *>(&text)) > 0 ? text : "";
}

} // namespace

std::vector<ColourProfile> readColourProfiles(const std::vector<std::string> &connectors, SdBusDeadline deadline)
{
    std::vector<ColourProfile> profiles(connectors.size());
    const auto bus = openSdBus(SdBusKind::system);
    if (!bus || !waitUntilReady(bus.get(), deadline))
        return profiles;

    std::vector<SdBusMessage> calls;
    for (const auto &connector : connectors)
        calls.push_back(connector.empty() ? nullptr : findDevice(bus.get(), connector));
    auto replies = callTogether(bus.get(), calls, deadline);
    std::vector<std::string> objects;
    for (std::size_t i = 0; i < profiles.size(); ++i) {
        // No such service and no such device are both errors.
        profiles[i].mayExist = !replies[i] || sd_bus_message_is_method_error(replies[i].get(), nullptr) == 0;
        objects.push_back(profiles[i].mayExist ? readText(replies[i].get(), 'o') : "");
    }

    replies = getProperties(bus.get(), objects, "org.freedesktop.ColorManager.Device", "Profiles", deadline);
    for (std::size_t i = 0; i < profiles.size(); ++i) {
        const bool isList =
            enterProperty(replies[i].get(), "ao") && sd_bus_message_enter_container(replies[i].get(), 'a', "o") > 0;
        objects[i] = isList ? readText(replies[i].get(), 'o') : ""; // the first is the default
        profiles[i].mayExist = profiles[i].mayExist && !(isList && objects[i].empty());
    }

    replies = getProperties(bus.get(), objects, "org.freedesktop.ColorManager.Profile", "Filename", deadline);
    for (std::size_t i = 0; i < profiles.size(); ++i) {
        if (enterProperty(replies[i].get(), "s"))
            profiles[i].calibration = readVideoCardGamma(readText(replies[i].get(), 's'));
    }
    return profiles;
}

} // namespace ambertide
