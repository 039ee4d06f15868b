#include "adapters/linux/services/DBusApplicationObject.h"

#include "adapters/linux/bus/BusNames.h"
#include "adapters/linux/bus/SdBusObject.h"

#include <utility>

namespace ambertide {

struct DBusApplicationObject::Methods
{
    static const sd_bus_vtable vtable[];

    static const char *activate(DBusApplicationObject &object, SdBusReader &call, SdBusWriter &)
    {
        return run(object, call, object.m_activate);
    }

    static const char *open(DBusApplicationObject &object, SdBusReader &call, SdBusWriter &)
    {
        return call.skip() ? run(object, call, object.m_activate) : malformedCall;
    }

    static const char *activateAction(DBusApplicationObject &object, SdBusReader &call, SdBusWriter &)
    {
        const auto found = object.m_actions.find(call.text().value_or(""));
        if (found == object.m_actions.end())
            return "There is no such action";
        return call.skip() ? run(object, call, found->second) : malformedCall;
    }

private:
    /// By now the call has been read up to the platform data, which is the last argument of each method.
    static const char *run(DBusApplicationObject &object, SdBusReader &call, Callback callback)
    {
        const auto platformData = call.dictionary();
        if (!platformData)
            return malformedCall;
        std::string token;
        for (const char *key : {bus_names::activationTokenKey, bus_names::startupIdentifierKey}) {
            const auto found = platformData->find(key);
            const auto *text = found != platformData->end() ? std::get_if<std::string>(&found->second) : nullptr;
            if (text != nullptr && token.empty())
                token = *text;
        }
        object.m_session.afterMessage([callback = std::move(callback), token = std::move(token)] { callback(token); });
        return noRefusal;
    }
};

const sd_bus_vtable DBusApplicationObject::Methods::vtable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("Activate", "a{sv}", "", handleCall<activate>, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("Open", "asa{sv}", "", handleCall<open>, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("ActivateAction", "sava{sv}", "", handleCall<activateAction>, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END,
};

DBusApplicationObject::DBusApplicationObject(DBusSession &session, Callback activate,
                                             const std::function<void(ColorTemperature)> &perform)
    : m_session(session), m_activate(std::move(activate)),
      m_object(session.exportObject(bus_names::applicationPath, bus_names::applicationInterface, Methods::vtable, this))
{
    for (const auto preset : allColorTemperatures())
        setAction(identifier(preset), [perform, preset](const std::string &) { perform(preset); });
}

void DBusApplicationObject::setAction(std::string name, Callback callback)
{
    m_actions.insert_or_assign(std::move(name), std::move(callback));
}

} // namespace ambertide
