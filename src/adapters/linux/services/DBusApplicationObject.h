#pragma once

#include "adapters/linux/bus/DBusSession.h"
#include "model/presets/ColorTemperature.h"

#include <functional>
#include <map>
#include <string>

namespace ambertide {

/// Exports `org.freedesktop.Application` at the application's path, for launchers, a second copy and other desktop
/// programs. The caller is answered first; the callbacks run after that, on the main thread.
class DBusApplicationObject
{
public:
    /// Gets the token with which the desktop lets a window come to the front; empty when the caller sent none.
    using Callback = std::function<void(const std::string &activationToken)>;

    /// `activate` also answers requests to open files, of which this application knows none. Each preset is an action,
    /// named by its identifier and carried out by `perform`. `session` must outlive this.
    DBusApplicationObject(DBusSession &session, Callback activate,
                          const std::function<void(ColorTemperature)> &perform);
    DBusApplicationObject(const DBusApplicationObject &) = delete;
    DBusApplicationObject &operator=(const DBusApplicationObject &) = delete;

    /// Adds or replaces an action. Calls of unknown actions are refused; parameters are ignored.
    void setAction(std::string name, Callback callback);

private:
    struct Methods;

    DBusSession &m_session;
    Callback m_activate;
    std::map<std::string, Callback> m_actions;
    Observation m_object;
};

} // namespace ambertide
