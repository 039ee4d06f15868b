#include "adapters/linux/bus/DBusNotificationCenter.h"

#include "adapters/linux/bus/PostedSignal.h"

#include <utility>

namespace ambertide {

Observation DBusNotificationCenter::observe(std::string name, Delivery, NotificationHandler handler)
{
    auto match = m_matches[name].lock();
    if (!match) {
        match = std::make_shared<Observation>(
            m_session.match(posted_signal::matchRule(name), [this](sd_bus_message *message) { receive(message); }));
        m_matches[name] = match;
    }
    auto observer = std::make_shared<Observation>(m_observers.observe(name, std::move(handler)));
    return Observation([match, observer] { observer->release(); });
}

void DBusNotificationCenter::receive(sd_bus_message *message)
{
    if (auto notification = posted_signal::decode(message))
        m_session.afterMessage([this, received = *std::move(notification)] { m_observers.post(received); });
}

void DBusNotificationCenter::post(const Notification &notification, Delivery)
{
    m_session.send(posted_signal::encode(m_session.bus(), notification));
}

} // namespace ambertide
