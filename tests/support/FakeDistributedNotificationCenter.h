#pragma once

#include "platform/DistributedNotificationCenter.h"
#include "platform/NotificationCenter.h"

#include <string>
#include <utility>
#include <vector>

namespace ambertide {

/// Delivers to its own observers before post() returns, and records what was asked of it.
class FakeDistributedNotificationCenter final : public DistributedNotificationCenter
{
public:
    std::vector<std::pair<Notification, Delivery>> posts;
    std::vector<std::pair<std::string, Delivery>> observed; ///< every name ever observed, in order

    Observation observe(std::string name, Delivery delivery, NotificationHandler handler) override
    {
        observed.emplace_back(name, delivery);
        return m_observers.observe(std::move(name), std::move(handler));
    }
    void post(const Notification &notification, Delivery delivery) override
    {
        posts.emplace_back(notification, delivery);
        m_observers.post(notification);
    }
    /// A post of some other process.
    void receive(const Notification &notification) { m_observers.post(notification); }

private:
    NotificationCenter m_observers;
};

} // namespace ambertide
