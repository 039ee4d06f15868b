#include "adapters/linux/bus/DBusNotificationCenter.h"

#include "adapters/linux/bus/PostedSignal.h"

#include <utility>

namespace ambertide {

Observation DBusNotificationCenter::observe(std::string name, Delivery, NotificationHandler handler)
{
    const auto receive = [](sd_bus_message *message, void *context, sd_bus_error *) {
        auto &center = *static_cast<DBusNotificationCenter *>(context);
        if (auto notification = posted_signal::decode(message))
            center.m_session.afterMessage(
                [&center, received = *std::move(notification)] { center.m_observers.post(received); });
        return 0;
    };
    auto match = m_matches[name].lock();
    if (!match) {
        match = std::make_shared<Observation>(m_session.install([this, name, receive](sd_bus *bus) {
            return addMatch(bus, posted_signal::matchRule(name), receive, this);
        }));
        m_matches[name] = match;
    }
    auto observer = std::make_shared<Observation>(m_observers.observe(std::move(name), std::move(handler)));
    return Observation([match, observer] { observer->release(); });
}

void DBusNotificationCenter::post(const Notification &notification, Delivery)
{
    if (m_session.bus() != nullptr)
        m_session.send(posted_signal::encode(m_session.bus(), notification));
}

} // namespace ambertide
