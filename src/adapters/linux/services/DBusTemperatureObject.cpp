#include "adapters/linux/services/DBusTemperatureObject.h"

#include "adapters/linux/bus/BusNames.h"

#include <utility>

namespace ambertide {

namespace {

constexpr char temperatureProperty[] = "Temperature";
constexpr char scheduleProperty[] = "ScheduleEnabled";

} // namespace

/// The bus answers a write once the setter returns, and nothing else is read before the work left behind has run: who
/// reads after writing gets what was written.
struct DBusTemperatureObject::Properties
{
    static const sd_bus_vtable vtable[];

    template <double (TemperatureControl::*value)() const>
    static int get(sd_bus *, const char *, const char *, const char *, sd_bus_message *reply, void *context,
                   sd_bus_error *)
    {
        return sd_bus_message_append(reply, "d", (controlOf(context).*value)());
    }

    static int getScheduleEnabled(sd_bus *, const char *, const char *, const char *, sd_bus_message *reply,
                                  void *context, sd_bus_error *)
    {
        return sd_bus_message_append(reply, "b", static_cast<int>(controlOf(context).scheduleEnabled()));
    }

    static int setTemperature(sd_bus *, const char *, const char *, const char *, sd_bus_message *value, void *context,
                              sd_bus_error *error)
    {
        double temperature = 0;
        if (const int result = sd_bus_message_read(value, "d", &temperature); result < 0)
            return result;
        auto &control = controlOf(context);
        if (!control.acceptsTemperature(temperature))
            return sd_bus_error_setf(error, SD_BUS_ERROR_INVALID_ARGS,
                                     "The temperature must be between %.0f and %.0f K", control.minimumTemperature(),
                                     control.maximumTemperature());
        sessionOf(context).afterMessage([&control, temperature] { control.requestTemperature(temperature); });
        return 1;
    }

    static int setScheduleEnabled(sd_bus *, const char *, const char *, const char *, sd_bus_message *value,
                                  void *context, sd_bus_error *)
    {
        int isEnabled = 0;
        if (const int result = sd_bus_message_read(value, "b", &isEnabled); result < 0)
            return result;
        auto &control = controlOf(context);
        sessionOf(context).afterMessage([&control, isEnabled] { control.setScheduleEnabled(isEnabled != 0); });
        return 1;
    }

private:
    static TemperatureControl &controlOf(void *context)
    {
        return static_cast<DBusTemperatureObject *>(context)->m_control;
    }
    static DBusSession &sessionOf(void *context) { return static_cast<DBusTemperatureObject *>(context)->m_session; }
};

const sd_bus_vtable DBusTemperatureObject::Properties::vtable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_WRITABLE_PROPERTY(temperatureProperty, "d", get<&TemperatureControl::temperature>, setTemperature, 0,
                             SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE | SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_PROPERTY("MinimumTemperature", "d", get<&TemperatureControl::minimumTemperature>, 0,
                    SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("MaximumTemperature", "d", get<&TemperatureControl::maximumTemperature>, 0,
                    SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_WRITABLE_PROPERTY(scheduleProperty, "b", getScheduleEnabled, setScheduleEnabled, 0,
                             SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE | SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END,
};

DBusTemperatureObject::DBusTemperatureObject(DBusSession &session, TemperatureControl &control)
    : m_session(session), m_control(control), m_announcedTemperature(control.temperature()),
      m_announcedScheduleEnabled(control.scheduleEnabled()), m_object(session.install([this](sd_bus *bus) {
          sd_bus_slot *slot = nullptr;
          sd_bus_add_object_vtable(bus, &slot, bus_names::applicationPath, bus_names::temperatureInterface,
                                   Properties::vtable, this);
          return SdBusSlot(slot);
      })),
      m_changes(control.observe([this] { announceChanges(); }))
{
}

void DBusTemperatureObject::announceChanges()
{
    const double temperature = m_control.temperature();
    const bool scheduleEnabled = m_control.scheduleEnabled();
    const bool hasNewTemperature = std::exchange(m_announcedTemperature, temperature) != temperature;
    const bool hasNewSchedule = std::exchange(m_announcedScheduleEnabled, scheduleEnabled) != scheduleEnabled;
    sd_bus_message *message = nullptr;
    if (!(hasNewTemperature || hasNewSchedule) || m_session.bus() == nullptr ||
        sd_bus_message_new_signal(m_session.bus(), &message, bus_names::applicationPath,
                                  "org.freedesktop.DBus.Properties", "PropertiesChanged") < 0)
        return;
    const SdBusMessage owner(message);
    sd_bus_message_append(message, "s", bus_names::temperatureInterface);
    sd_bus_message_open_container(message, 'a', "{sv}");
    if (hasNewTemperature)
        sd_bus_message_append(message, "{sv}", temperatureProperty, "d", temperature);
    if (hasNewSchedule)
        sd_bus_message_append(message, "{sv}", scheduleProperty, "b", static_cast<int>(scheduleEnabled));
    sd_bus_message_close_container(message);
    sd_bus_message_append(message, "as", 0);
    m_session.send(owner);
}

} // namespace ambertide
