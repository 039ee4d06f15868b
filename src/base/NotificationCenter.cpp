#include "base/NotificationCenter.h"

#include <utility>

namespace ambertide {

Observation NotificationCenter::observe(const std::string &name, NotificationHandler handler)
{
    return m_observers[name].observe(std::move(handler));
}

void NotificationCenter::post(const Notification &notification)
{
    const auto found = m_observers.find(notification.name);
    if (found != m_observers.end())
        found->second.notify(notification);
}

} // namespace ambertide
