#pragma once

#include "platform/DistributedNotificationCenter.h"
#include "platform/NotificationCenter.h"

#include <vector>

namespace ambertide {

/// A session with one process: posts come back to its own observers at once and are recorded.
class FakeDistributedNotificationCenter final : public DistributedNotificationCenter
{
public:
    struct Posted
    {
        Notification notification;
        Delivery delivery;
    };
    std::vector<Posted> posted;

    Observation observe(std::string name, Delivery /*delivery*/, NotificationHandler handler) override
    {
        return m_center.observe(std::move(name), std::move(handler));
    }
    void post(const Notification &notification, Delivery delivery) override
    {
        posted.push_back({notification, delivery});
        m_center.post(notification);
    }

private:
    NotificationCenter m_center;
};

} // namespace ambertide
