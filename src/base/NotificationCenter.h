#pragma once

#include "base/Notification.h"
#include "base/Observers.h"

#include <map>
#include <string>

namespace ambertide {

/// Notifications by name inside this process. Main thread; a post calls every observer of the name before it returns,
/// in the order of their registration. Observers may register, unregister and post from within a call.
class NotificationCenter
{
public:
    Observation observe(const std::string &name, NotificationHandler handler);
    void post(const Notification &notification);

private:
    std::map<std::string, Observers<const Notification &>> m_observers; ///< by name
};

} // namespace ambertide
