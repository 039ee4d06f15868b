#include "adapters/linux/services/DBusTemperatureObject.h"

#include "adapters/linux/bus/BusNames.h"
#include "adapters/linux/bus/SdBusObject.h"
#include "model/AppViewModel.h"

#include <utility>

namespace ambertide {

namespace {

constexpr char temperatureProperty[] = "Temperature";
constexpr char scheduleProperty[] = "ScheduleEnabled";

} // namespace

/// sd-bus answers a write as soon as the setter returns. The work that the setter has queued runs before the next
/// message is handled, so whoever reads after writing gets what was written.
struct DBusTemperatureObject::Properties
{
    static const sd_bus_vtable vtable[];

    static void temperature(DBusTemperatureObject &object, SdBusWriter &value)
    {
        value.add(object.m_model.temperature());
    }

    template <const double &bound>
    static void temperatureBound(DBusTemperatureObject &, SdBusWriter &value)
    {
        value.add(bound);
    }

    static void scheduleEnabled(DBusTemperatureObject &object, SdBusWriter &value)
    {
        value.add(object.m_model.scheduleEnabled());
    }

    static int setTemperature(sd_bus *, const char *, const char *, const char *, sd_bus_message *value, void *context,
                              sd_bus_error *error)
    {
        double temperature = 0;
        if (const int result = sd_bus_message_read(value, "d", &temperature); result < 0)
            return result;
        if (!AppViewModel::acceptsRequest(temperature))
            return sd_bus_error_setf(error, SD_BUS_ERROR_INVALID_ARGS,
                                     "The temperature must be between %.0f and %.0f K", AppViewModel::minTemperature,
                                     AppViewModel::maxTemperature);
        sessionOf(context).afterMessage(
            [&model = modelOf(context), temperature] { model.requestTemperature(temperature); });
        return 1;
    }

    static int setScheduleEnabled(sd_bus *, const char *, const char *, const char *, sd_bus_message *value,
                                  void *context, sd_bus_error *)
    {
        int isEnabled = 0;
        if (const int result = sd_bus_message_read(value, "b", &isEnabled); result < 0)
            return result;
        sessionOf(context).afterMessage(
            [&model = modelOf(context), isEnabled] { model.setScheduleEnabled(isEnabled != 0); });
        return 1;
    }

private:
    static AppViewModel &modelOf(void *context) { return static_cast<DBusTemperatureObject *>(context)->m_model; }
    static DBusSession &sessionOf(void *context) { return static_cast<DBusTemperatureObject *>(context)->m_session; }
};

const sd_bus_vtable DBusTemperatureObject::Properties::vtable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_WRITABLE_PROPERTY(temperatureProperty, "d", handleRead<temperature>, setTemperature, 0,
                             SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE | SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_PROPERTY("MinimumTemperature", "d", handleRead<temperatureBound<AppViewModel::minTemperature>>, 0,
                    SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("MaximumTemperature", "d", handleRead<temperatureBound<AppViewModel::maxTemperature>>, 0,
                    SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_WRITABLE_PROPERTY(scheduleProperty, "b", handleRead<scheduleEnabled>, setScheduleEnabled, 0,
                             SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE | SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END,
};

DBusTemperatureObject::DBusTemperatureObject(DBusSession &session, AppViewModel &model)
    : m_session(session), m_model(model), m_announcedTemperature(model.temperature()),
      m_announcedScheduleEnabled(model.scheduleEnabled()),
      m_object(
          session.exportObject(bus_names::applicationPath, bus_names::temperatureInterface, Properties::vtable, this))
{
    QObject::connect(&model, &AppViewModel::changed, &m_context, [this] { announceChanges(); });
}

void DBusTemperatureObject::announceChanges()
{
    const double temperature = m_model.temperature();
    const bool scheduleEnabled = m_model.scheduleEnabled();
    const bool hasNewTemperature = std::exchange(m_announcedTemperature, temperature) != temperature;
    const bool hasNewSchedule = std::exchange(m_announcedScheduleEnabled, scheduleEnabled) != scheduleEnabled;
    if (!hasNewTemperature && !hasNewSchedule)
        return;
    UserInfo changed;
    if (hasNewTemperature)
        changed.emplace(temperatureProperty, temperature);
    if (hasNewSchedule)
        changed.emplace(scheduleProperty, scheduleEnabled);
    auto signal = SdBusWriter::signal(m_session.bus(), bus_names::applicationPath, "org.freedesktop.DBus.Properties",
                                      "PropertiesChanged");
    signal.add(bus_names::temperatureInterface, changed).container('a', "s", [] {});
    m_session.send(signal.take());
}

} // namespace ambertide
