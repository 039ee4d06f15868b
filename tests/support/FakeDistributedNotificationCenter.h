#pragma once

#include "base/NotificationCenter.h"
#include "ports/DistributedNotificationCenter.h"

#include <string>
#include <utility>
#include <vector>

namespace ambertide {

/// Delivers to its own observers before post() returns, and records what was asked of it.
class FakeDistributedNotificationCenter final : public DistributedNotificationCenter
{
public:
    std::vector<std::pair<Notification, Delivery>> posts;

    Observation observe(std::string name, Delivery, NotificationHandler handler) override
    {
        return m_observers.observe(std::move(name), std::move(handler));
    }
    void post(const Notification &notification, Delivery delivery) override
    {
        posts.emplace_back(notification, delivery);
        m_observers.post(notification);
    }

private:
    NotificationCenter m_observers;
};

} // namespace ambertide
