#include "adapters/linux/services/GnomeSearchProvider.h"

#include "adapters/linux/bus/BusNames.h"
#include "adapters/linux/bus/SdBusObject.h"
#include "model/presets/ActionSearch.h"
#include "model/presets/SetColorTemperatureShortcut.h"

#include <utility>

namespace ambertide {

namespace {

/// Reads the search terms, which are the next argument of the call.
const char *answerSearch(SdBusReader &call, SdBusWriter &reply)
{
    const auto terms = call.texts();
    if (!terms)
        return malformedCall;
    std::string query;
    for (const auto &term : *terms)
        query.append(term).append(" ");
    reply.container('a', "s", [&] {
        for (const auto &match : findColorTemperatures(query))
            reply.add(identifier(match.temperature));
    });
    return noRefusal;
}

} // namespace

struct GnomeSearchProvider::Methods
{
    static const sd_bus_vtable vtable[];

    static const char *getInitialResultSet(GnomeSearchProvider &, SdBusReader &call, SdBusWriter &reply)
    {
        return answerSearch(call, reply);
    }

    static const char *getSubsearchResultSet(GnomeSearchProvider &, SdBusReader &call, SdBusWriter &reply)
    {
        return call.skip() ? answerSearch(call, reply) : malformedCall;
    }

    static const char *getResultMetas(GnomeSearchProvider &, SdBusReader &call, SdBusWriter &reply)
    {
        const auto results = call.texts();
        if (!results)
            return malformedCall;
        reply.container('a', "a{sv}", [&] {
            for (const auto &result : *results) {
                if (const auto preset = colorTemperature(result))
                    reply.add(UserInfo{{"id", identifier(*preset)},
                                       {"name", displayRepresentation(*preset)},
                                       {"description", SetColorTemperatureShortcut::title()},
                                       {"gicon", bus_names::application}});
            }
        });
        return noRefusal;
    }

    static const char *activateResult(GnomeSearchProvider &object, SdBusReader &call, SdBusWriter &)
    {
        const auto preset = colorTemperature(call.text().value_or(""));
        if (!preset)
            return "There is no such result";
        object.m_session.afterMessage([&object, preset] { object.m_perform(*preset); });
        return noRefusal;
    }

    static const char *launchSearch(GnomeSearchProvider &object, SdBusReader &, SdBusWriter &)
    {
        object.m_session.afterMessage([&object] { object.m_launch(); });
        return noRefusal;
    }
};

const sd_bus_vtable GnomeSearchProvider::Methods::vtable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("GetInitialResultSet", "as", "as", handleCall<getInitialResultSet>, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("GetSubsearchResultSet", "asas", "as", handleCall<getSubsearchResultSet>, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("GetResultMetas", "as", "aa{sv}", handleCall<getResultMetas>, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("ActivateResult", "sasu", "", handleCall<activateResult>, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("LaunchSearch", "asu", "", handleCall<launchSearch>, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END,
};

GnomeSearchProvider::GnomeSearchProvider(DBusSession &session, Perform perform, std::function<void()> launch)
    : m_session(session), m_perform(std::move(perform)), m_launch(std::move(launch)),
      m_object(
          session.exportObject(bus_names::searchProviderPath, "org.gnome.Shell.SearchProvider2", Methods::vtable, this))
{
}

} // namespace ambertide
