#pragma once

#include "base/Notification.h"
#include "base/Observation.h"

#include <cstdint>
#include <map>

namespace ambertide {

/// Notifications by name inside this process. Main thread; a post calls every observer of the name before it returns,
/// in the order of their registration. Observers may register, unregister and post from within a call.
class NotificationCenter
{
public:
    Observation observe(std::string name, NotificationHandler handler);
    void post(const Notification &notification);

private:
    struct Observer
    {
        std::string name;
        NotificationHandler handler;
    };
    std::uint64_t m_nextObserver = 0;
    std::map<std::uint64_t, Observer> m_observers;
};

} // namespace ambertide
