#include "adapters/linux/services/GnomeSearchProvider.h"

#include "adapters/linux/bus/BusNames.h"
#include "adapters/linux/bus/SdBusReader.h"
#include "model/presets/ActionSearch.h"
#include "model/presets/SetColorTemperatureShortcut.h"

#include <cerrno>
#include <utility>

namespace ambertide {

namespace {

int appendMeta(sd_bus_message *reply, ColorTemperature preset)
{
    return sd_bus_message_append(reply, "a{sv}", 4, "id", "s", identifier(preset).c_str(), "name", "s",
                                 displayRepresentation(preset).c_str(), "description", "s",
                                 std::string(SetColorTemperatureShortcut::title).c_str(), "gicon", "s",
                                 bus_names::application);
}

/// Reads the terms, which come next in the call.
int answerSearch(sd_bus_message *call, SdBusReader reader)
{
    const auto terms = reader.texts();
    sd_bus_message *reply = nullptr;
    if (!terms || sd_bus_message_new_method_return(call, &reply) < 0)
        return -EINVAL;
    const SdBusMessage owner(reply);
    std::string query;
    for (const auto &term : *terms)
        query.append(term).append(" ");
    sd_bus_message_open_container(reply, 'a', "s");
    for (const auto &match : findColorTemperatures(query))
        sd_bus_message_append(reply, "s", identifier(match.temperature).c_str());
    sd_bus_message_close_container(reply);
    return sd_bus_send(nullptr, reply, nullptr);
}

} // namespace

struct GnomeSearchProvider::Methods
{
    static const sd_bus_vtable vtable[];

    static int getInitialResultSet(sd_bus_message *call, void *, sd_bus_error *)
    {
        return answerSearch(call, SdBusReader(call));
    }

    static int getSubsearchResultSet(sd_bus_message *call, void *, sd_bus_error *)
    {
        SdBusReader reader(call);
        return reader.skip() ? answerSearch(call, reader) : -EINVAL;
    }

    static int getResultMetas(sd_bus_message *call, void *, sd_bus_error *)
    {
        const auto results = SdBusReader(call).texts();
        sd_bus_message *reply = nullptr;
        if (!results || sd_bus_message_new_method_return(call, &reply) < 0)
            return -EINVAL;
        const SdBusMessage owner(reply);
        sd_bus_message_open_container(reply, 'a', "a{sv}");
        for (const auto &result : *results) {
            if (const auto preset = colorTemperature(result))
                appendMeta(reply, *preset);
        }
        sd_bus_message_close_container(reply);
        return sd_bus_send(nullptr, reply, nullptr);
    }

    static int activateResult(sd_bus_message *call, void *context, sd_bus_error *error)
    {
        auto &object = *static_cast<GnomeSearchProvider *>(context);
        const auto preset = colorTemperature(SdBusReader(call).text().value_or(""));
        if (!preset)
            return sd_bus_error_set(error, SD_BUS_ERROR_INVALID_ARGS, "There is no such result");
        object.m_session.afterMessage([&object, preset] { object.m_perform(*preset); });
        return sd_bus_reply_method_return(call, "");
    }

    static int launchSearch(sd_bus_message *call, void *context, sd_bus_error *)
    {
        auto &object = *static_cast<GnomeSearchProvider *>(context);
        object.m_session.afterMessage([&object] { object.m_launch(); });
        return sd_bus_reply_method_return(call, "");
    }
};

const sd_bus_vtable GnomeSearchProvider::Methods::vtable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("GetInitialResultSet", "as", "as", getInitialResultSet, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("GetSubsearchResultSet", "asas", "as", getSubsearchResultSet, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("GetResultMetas", "as", "aa{sv}", getResultMetas, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("ActivateResult", "sasu", "", activateResult, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("LaunchSearch", "asu", "", launchSearch, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END,
};

GnomeSearchProvider::GnomeSearchProvider(DBusSession &session, Perform perform, std::function<void()> launch)
    : m_session(session), m_perform(std::move(perform)), m_launch(std::move(launch)),
      m_object(session.install([this](sd_bus *bus) {
          sd_bus_slot *slot = nullptr;
          sd_bus_add_object_vtable(bus, &slot, bus_names::searchProviderPath, "org.gnome.Shell.SearchProvider2",
                                   Methods::vtable, this);
          return SdBusSlot(slot);
      }))
{
}

} // namespace ambertide
