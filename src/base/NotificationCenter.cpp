#include "base/NotificationCenter.h"

#include <utility>
#include <vector>

namespace ambertide {

Observation NotificationCenter::observe(std::string name, NotificationHandler handler)
{
    const auto observer = m_nextObserver++;
    m_observers.emplace(observer, Observer{std::move(name), std::move(handler)});
    return Observation([this, observer] { m_observers.erase(observer); });
}

void NotificationCenter::post(const Notification &notification)
{
    std::vector<std::uint64_t> addressed;
    for (const auto &[number, observer] : m_observers) {
        if (observer.name == notification.name)
            addressed.push_back(number);
    }
    for (const auto number : addressed) {
        // An earlier observer may have unregistered this one, and this one may unregister itself.
        const auto found = m_observers.find(number);
        if (found == m_observers.end())
            continue;
        const auto handler = found->second.handler;
        handler(notification);
    }
}

} // namespace ambertide
