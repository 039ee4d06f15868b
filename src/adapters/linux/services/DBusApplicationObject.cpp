#include "adapters/linux/services/DBusApplicationObject.h"

#include "adapters/linux/bus/BusNames.h"
#include "adapters/linux/bus/SdBusReader.h"

#include <cerrno>
#include <utility>

namespace ambertide {

struct DBusApplicationObject::Methods
{
    static const sd_bus_vtable vtable[];

    static int activate(sd_bus_message *call, void *context, sd_bus_error *)
    {
        auto &object = *static_cast<DBusApplicationObject *>(context);
        return answerAndRun(call, SdBusReader(call), object, object.m_activate);
    }

    static int open(sd_bus_message *call, void *context, sd_bus_error *)
    {
        auto &object = *static_cast<DBusApplicationObject *>(context);
        SdBusReader reader(call);
        return reader.skip() ? answerAndRun(call, reader, object, object.m_activate) : -EINVAL;
    }

    static int activateAction(sd_bus_message *call, void *context, sd_bus_error *error)
    {
        auto &object = *static_cast<DBusApplicationObject *>(context);
        SdBusReader reader(call);
        const auto found = object.m_actions.find(reader.text().value_or(""));
        if (found == object.m_actions.end())
            return sd_bus_error_set(error, SD_BUS_ERROR_INVALID_ARGS, "There is no such action");
        return reader.skip() ? answerAndRun(call, reader, object, found->second) : -EINVAL;
    }

private:
    /// The reader stands before the platform data, which comes last in each of the calls.
    static int answerAndRun(sd_bus_message *call, SdBusReader reader, DBusApplicationObject &object, Callback callback)
    {
        const auto platformData = reader.dictionary();
        if (!platformData)
            return -EINVAL;
        std::string token;
        for (const char *key : {bus_names::activationTokenKey, bus_names::startupIdentifierKey}) {
            const auto found = platformData->find(key);
            const auto *text = found != platformData->end() ? std::get_if<std::string>(&found->second) : nullptr;
            if (text != nullptr && token.empty())
                token = *text;
        }
        object.m_session.afterMessage([callback = std::move(callback), token = std::move(token)] { callback(token); });
        return sd_bus_reply_method_return(call, "");
    }
};

const sd_bus_vtable DBusApplicationObject::Methods::vtable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("Activate", "a{sv}", "", activate, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("Open", "asa{sv}", "", open, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("ActivateAction", "sava{sv}", "", activateAction, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END,
};

DBusApplicationObject::DBusApplicationObject(DBusSession &session, Callback activate,
                                             const std::function<void(ColorTemperature)> &perform)
    : m_session(session), m_activate(std::move(activate)), m_object(session.install([this](sd_bus *bus) {
          sd_bus_slot *slot = nullptr;
          sd_bus_add_object_vtable(bus, &slot, bus_names::applicationPath, bus_names::applicationInterface,
                                   Methods::vtable, this);
          return SdBusSlot(slot);
      }))
{
    for (const auto preset : allColorTemperatures())
        setAction(identifier(preset), [perform, preset](const std::string &) { perform(preset); });
}

void DBusApplicationObject::setAction(std::string name, Callback callback)
{
    m_actions.insert_or_assign(std::move(name), std::move(callback));
}

} // namespace ambertide
