#include "adapters/linux/displays/profiles/ColourProfiles.h"

#include "adapters/linux/bus/CallBatch.h"
#include "adapters/linux/displays/profiles/VideoCardGamma.h"

#include <algorithm>
#include <utility>

namespace ambertide {

namespace {

using Knowledge = ColourProfile::Knowledge;

constexpr char service[] = "org.freedesktop.ColorManager";
constexpr char path[] = "/org/freedesktop/ColorManager";
constexpr char deviceInterface[] = "org.freedesktop.ColorManager.Device";
constexpr char profileInterface[] = "org.freedesktop.ColorManager.Profile";

/// Asks for the displays that root or this user has made known. Another user who is logged in has made known the same
/// connectors.
SdBusMessage listDisplays(sd_bus *bus)
{
    sd_bus_message *message = nullptr;
    sd_bus_message_new_method_call(bus, &message, service, path, service, "GetDevicesByKind");
    SdBusMessage call(message);
    if (!call || sd_bus_message_set_auto_start(message, 0) < 0 || sd_bus_message_append(message, "s", "display") < 0)
        return nullptr;
    return call;
}

std::string readText(const SdBusMessage &reply, char type)
{
    const char *text = nullptr;
    return sd_bus_message_read_basic(reply.get(), type, static_cast<void *>(&text)) > 0 ? text : "";
}

std::vector<std::string> readObjects(const SdBusMessage &reply)
{
    std::vector<std::string> objects;
    if (reply && sd_bus_message_enter_container(reply.get(), 'a', "o") > 0) {
        for (auto object = readText(reply, 'o'); !object.empty(); object = readText(reply, 'o'))
            objects.push_back(std::move(object));
    }
    return objects;
}

/// The connector in a reply with a device's metadata.
std::string readConnector(const SdBusMessage &reply)
{
    if (!enterProperty(reply, "a{ss}") || sd_bus_message_enter_container(reply.get(), 'a', "{ss}") <= 0)
        return {};
    while (sd_bus_message_enter_container(reply.get(), 'e', "ss") > 0) {
        const auto key = readText(reply, 's');
        auto value = readText(reply, 's');
        if (key == "XRANDR_name")
            return value;
        sd_bus_message_exit_container(reply.get());
    }
    return {};
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
    const auto setAll = [&profiles](Knowledge knowledge) {
        for (auto &profile : profiles)
            profile.knowledge = knowledge;
    };
    if (!systemBus) {
        setAll(Knowledge::none);
        return profiles;
    }
    if (!waitUntilReady(systemBus, deadline))
        return profiles;

    std::vector<SdBusMessage> questions;
    questions.push_back(listDisplays(systemBus));
    CallBatch question(systemBus, questions);
    const auto &answer = question.wait(deadline)[0];
    if (!answer)
        return profiles;
    setAll(Knowledge::none); // if there is no colord, too: then the bus answers with an error
    const auto devices = readObjects(answer);
    CallBatch metadata(systemBus, getProperties(systemBus, devices, deviceInterface, "Metadata"));
    CallBatch lists(systemBus, getProperties(systemBus, devices, deviceInterface, "Profiles"));
    const auto &described = metadata.wait(deadline);
    const auto &listed = lists.wait(deadline);
    if (std::ranges::any_of(described, [](const auto &reply) { return !reply; }))
        setAll(Knowledge::unknown);
    std::vector<std::string> objects(profiles.size());
    for (std::size_t device = 0; device < devices.size(); ++device) {
        const auto found = std::ranges::find(connectors, readConnector(described[device]));
        if (found == connectors.end() || found->empty())
            continue;
        const auto i = static_cast<std::size_t>(found - connectors.begin());
        profiles[i].knowledge = isError(listed[device]) ? Knowledge::found : Knowledge::unknown;
        if (!enterProperty(listed[device], "ao"))
            continue;
        const auto assigned = readObjects(listed[device]);
        if (assigned.empty())
            profiles[i].knowledge = Knowledge::none;
        else
            objects[i] = assigned.front(); // the default
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

ColourProfileWatch watchColourProfiles(sd_bus *systemBus, sd_bus_message_handler_t handler, void *context)
{
    const auto watch = [&](const char *member) {
        return addMatch(systemBus,
                        signalRule({{"sender", service}, {"path", path}, {"interface", service}, {"member", member}}),
                        handler, context);
    };
    return {watch("DeviceAdded"), watch("DeviceChanged")};
}

} // namespace ambertide
