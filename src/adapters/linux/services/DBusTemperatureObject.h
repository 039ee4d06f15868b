#pragma once

#include "adapters/linux/bus/DBusSession.h"

#include <QObject>

namespace ambertide {

class AppViewModel;

/// Exports `me.tovanu.Ambertide1` at the application's path: the interface for scripts, bars and applets that
/// docs/dbus-api.md describes. Main thread.
class DBusTemperatureObject
{
public:
    /// Both must outlive this.
    DBusTemperatureObject(DBusSession &session, AppViewModel &model);
    DBusTemperatureObject(const DBusTemperatureObject &) = delete;
    DBusTemperatureObject &operator=(const DBusTemperatureObject &) = delete;

private:
    struct Properties;

    void announceChanges();

    DBusSession &m_session;
    AppViewModel &m_model;
    double m_announcedTemperature;
    bool m_announcedScheduleEnabled;
    Observation m_object;
    QObject m_context; ///< of the connection to the model's signal
};

} // namespace ambertide
