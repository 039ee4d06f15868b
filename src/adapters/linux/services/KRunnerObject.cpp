#include "adapters/linux/services/KRunnerObject.h"

#include "adapters/linux/bus/BusNames.h"
#include "adapters/linux/bus/SdBusReader.h"
#include "model/presets/ActionSearch.h"
#include "model/presets/SetColorTemperatureShortcut.h"

#include <cerrno>
#include <utility>

namespace ambertide {

namespace {

/// Kinds of match, from KRunner's Plasma::QueryMatch::Type.
constexpr int possibleMatch = 30;
constexpr int exactMatch = 100;

int appendMatch(sd_bus_message *reply, const ActionMatch &match)
{
    const SetColorTemperatureShortcut shortcut{match.temperature};
    return sd_bus_message_append(reply, "(sssida{sv})", identifier(match.temperature).c_str(),
                                 shortcut.parameterSummary().c_str(), bus_names::application,
                                 match.relevance < 1 ? possibleMatch : exactMatch, match.relevance, 0);
}

} // namespace

struct KRunnerObject::Methods
{
    static const sd_bus_vtable vtable[];

    /// Matches have nothing to offer beside being run.
    static int actions(sd_bus_message *call, void *, sd_bus_error *)
    {
        return sd_bus_reply_method_return(call, "a(sss)", 0);
    }

    static int match(sd_bus_message *call, void *, sd_bus_error *)
    {
        const auto query = SdBusReader(call).text();
        sd_bus_message *reply = nullptr;
        if (!query || sd_bus_message_new_method_return(call, &reply) < 0)
            return -EINVAL;
        const SdBusMessage owner(reply);
        sd_bus_message_open_container(reply, 'a', "(sssida{sv})");
        for (const auto &found : findColorTemperatures(*query))
            appendMatch(reply, found);
        sd_bus_message_close_container(reply);
        return sd_bus_send(nullptr, reply, nullptr);
    }

    static int run(sd_bus_message *call, void *context, sd_bus_error *error)
    {
        auto &object = *static_cast<KRunnerObject *>(context);
        const auto preset = colorTemperature(SdBusReader(call).text().value_or(""));
        if (!preset)
            return sd_bus_error_set(error, SD_BUS_ERROR_INVALID_ARGS, "There is no such match");
        object.m_session.afterMessage([&object, preset] { object.m_perform(*preset); });
        return sd_bus_reply_method_return(call, "");
    }
};

const sd_bus_vtable KRunnerObject::Methods::vtable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("Actions", "", "a(sss)", actions, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("Match", "s", "a(sssida{sv})", match, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("Run", "ss", "", run, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END,
};

KRunnerObject::KRunnerObject(DBusSession &session, Perform perform)
    : m_session(session), m_perform(std::move(perform)), m_object(session.install([this](sd_bus *bus) {
          sd_bus_slot *slot = nullptr;
          sd_bus_add_object_vtable(bus, &slot, bus_names::runnerPath, "org.kde.krunner1", Methods::vtable, this);
          return SdBusSlot(slot);
      }))
{
}

} // namespace ambertide
