#pragma once

#include "adapters/linux/bus/DBusSession.h"
#include "ports/TemperatureControl.h"

namespace ambertide {

/// Exports `me.tovanu.Ambertide1` at the application's path: the interface for scripts, bars and applets that
/// docs/dbus-api.md describes. Main thread.
class DBusTemperatureObject
{
public:
    /// Both must outlive this.
    DBusTemperatureObject(DBusSession &session, TemperatureControl &control);
    DBusTemperatureObject(const DBusTemperatureObject &) = delete;
    DBusTemperatureObject &operator=(const DBusTemperatureObject &) = delete;

private:
    struct Properties;

    void announceChanges();

    DBusSession &m_session;
    TemperatureControl &m_control;
    double m_announcedTemperature;
    bool m_announcedScheduleEnabled;
    Observation m_object;
    Observation m_changes;
};

} // namespace ambertide
