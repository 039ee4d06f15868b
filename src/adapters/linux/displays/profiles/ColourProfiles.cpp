#include "adapters/linux/displays/profiles/ColourProfiles.h"

#include "adapters/linux/bus/CallBatch.h"
#include "adapters/linux/displays/profiles/VideoCardGamma.h"

namespace ambertide {

namespace {

using Knowledge = ColourProfile::Knowledge;

constexpr char service[] = "org.freedesktop.ColorManager";
constexpr char path[] = "/org/freedesktop/ColorManager";
constexpr char deviceInterface[] = "org.freedesktop.ColorManager.Device";
constexpr char profileInterface[] = "org.freedesktop.ColorManager.Profile";

SdBusMessage findDevice(sd_bus *bus, const std::string &connector)
{
    sd_bus_message *message = nullptr;
    sd_bus_message_new_method_call(bus, &message, service, path, service, "FindDeviceByProperty");
    SdBusMessage call(message);
    if (!call || sd_bus_message_set_auto_start(message, 0) < 0 ||
        sd_bus_message_append(message, "ss", "XRANDR_name", connector.c_str()) < 0)
        return nullptr;
    return call;
}

std::string readText(const SdBusMessage &reply, char type)
{
    const char *text = nullptr;
    return sd_bus_message_read_basic(reply.get(), type, static_cast<void *>(&text)) > 0 ? text : "";
}

/// One call for each object; null for an empty path.
std::vector<SdBusMessage> getProperties(sd_bus *bus, const std::vector<std::string> &objects, const char *interface,
                                        const char *name)
{
    std::vector<SdBusMessage> calls;
    for (const auto &object : objects)
        calls.push_back(object.empty() ? nullptr : getProperty(bus, service, object.c_str(), interface, name));
    return calls;
}

} // namespace

std::vector<ColourProfile> readColourProfiles(sd_bus *systemBus, const std::vector<std::string> &connectors,
                                              SdBusDeadline deadline)
{
    std::vector<ColourProfile> profiles(connectors.size());
    if (!systemBus) {
        for (auto &profile : profiles)
            profile.knowledge = Knowledge::none;
        return profiles;
    }
    if (!waitUntilReady(systemBus, deadline))
        return profiles;

    std::vector<SdBusMessage> questions;
    for (const auto &connector : connectors)
        questions.push_back(connector.empty() ? nullptr : findDevice(systemBus, connector));
    CallBatch devices(systemBus, questions);
    const auto &found = devices.wait(deadline);
    std::vector<std::string> objects(profiles.size());
    for (std::size_t i = 0; i < profiles.size(); ++i) {
        // If there is no colord, the bus answers with an error, too.
        if (connectors[i].empty() || isError(found[i]))
            profiles[i].knowledge = Knowledge::none;
        else if (found[i])
            objects[i] = readText(found[i], 'o');
    }

    CallBatch lists(systemBus, getProperties(systemBus, objects, deviceInterface, "Profiles"));
    const auto &listed = lists.wait(deadline);
    for (std::size_t i = 0; i < profiles.size(); ++i) {
        objects[i].clear();
        if (isError(listed[i]))
            profiles[i].knowledge = Knowledge::found;
        if (!enterProperty(listed[i], "ao") || sd_bus_message_enter_container(listed[i].get(), 'a', "o") <= 0)
            continue;
        objects[i] = readText(listed[i], 'o'); // the first is the default
        if (objects[i].empty())
            profiles[i].knowledge = Knowledge::none;
    }

    CallBatch files(systemBus, getProperties(systemBus, objects, profileInterface, "Filename"));
    const auto &named = files.wait(deadline);
    for (std::size_t i = 0; i < profiles.size(); ++i) {
        if (isError(named[i]))
            profiles[i].knowledge = Knowledge::found;
        if (!enterProperty(named[i], "s"))
            continue;
        const auto file = readText(named[i], 's');
        const auto gamma = readVideoCardGamma(file);
        profiles[i] = {Knowledge::found, gamma.tables, gamma.isDamaged ? file : std::string()};
    }
    return profiles;
}

SdBusSlot watchColourProfiles(sd_bus *systemBus, sd_bus_message_handler_t handler, void *context)
{
    return addMatch(
        systemBus,
        signalRule({{"sender", service}, {"path", path}, {"interface", service}, {"member", "DeviceChanged"}}), handler,
        context);
}

} // namespace ambertide
