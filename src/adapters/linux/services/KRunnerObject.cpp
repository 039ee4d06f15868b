#include "adapters/linux/services/KRunnerObject.h"

#include "adapters/linux/bus/BusNames.h"
#include "adapters/linux/bus/SdBusObject.h"
#include "model/presets/ActionSearch.h"
#include "model/presets/SetColorTemperatureShortcut.h"

#include <string_view>
#include <utility>

namespace ambertide {

namespace {

/// Kinds of match, from KRunner's Plasma::QueryMatch::Type.
constexpr int possibleMatch = 30;
constexpr int exactMatch = 100;

/// The identifiers that KRunner itself gives to the actions of our desktop entry. It shows only one of several results
/// with the same identifier, so no preset appears twice.
constexpr std::string_view matchPrefix = "applications:me.tovanu.Ambertide.desktop?action=";

void writeMatch(SdBusWriter &reply, const ActionMatch &match)
{
    reply.container('r', "sssida{sv}", [&] {
        reply.add(std::string(matchPrefix).append(identifier(match.temperature)),
                  SetColorTemperatureShortcut{match.temperature}.parameterSummary(), bus_names::application,
                  match.relevance < 1 ? possibleMatch : exactMatch, match.relevance, UserInfo());
    });
}

} // namespace

struct KRunnerObject::Methods
{
    static const sd_bus_vtable vtable[];

    /// A match can only be run; it has no further actions.
    static const char *actions(KRunnerObject &, SdBusReader &, SdBusWriter &reply)
    {
        reply.container('a', "(sss)", [] {});
        return noRefusal;
    }

    static const char *match(KRunnerObject &, SdBusReader &call, SdBusWriter &reply)
    {
        const auto query = call.text();
        if (!query)
            return malformedCall;
        reply.container('a', "(sssida{sv})", [&] {
            for (const auto &found : findColorTemperatures(*query))
                writeMatch(reply, found);
        });
        return noRefusal;
    }

    static const char *run(KRunnerObject &object, SdBusReader &call, SdBusWriter &)
    {
        const auto match = call.text().value_or("");
        const bool isOurs = match.starts_with(matchPrefix);
        const auto preset = isOurs ? colorTemperature(match.substr(matchPrefix.size())) : std::nullopt;
        if (!preset)
            return "There is no such match";
        object.m_session.afterMessage([&object, preset] { object.m_perform(*preset); });
        return noRefusal;
    }
};

const sd_bus_vtable KRunnerObject::Methods::vtable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("Actions", "", "a(sss)", handleCall<actions>, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("Match", "s", "a(sssida{sv})", handleCall<match>, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("Run", "ss", "", handleCall<run>, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END,
};

KRunnerObject::KRunnerObject(DBusSession &session, Perform perform)
    : m_session(session), m_perform(std::move(perform)),
      m_object(session.exportObject(bus_names::runnerPath, "org.kde.krunner1", Methods::vtable, this))
{
}

} // namespace ambertide
