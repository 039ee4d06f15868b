#pragma once

#include "adapters/linux/bus/DBusSession.h"
#include "base/NotificationCenter.h"
#include "ports/DistributedNotificationCenter.h"

#include <map>
#include <memory>
#include <string>

namespace ambertide {

/// Notifications as signals on the session bus. The bus holds none of them back, so every delivery is immediate. Each
/// observed name has a match rule of its own, so that posts under other names do not wake the process up.
class DBusNotificationCenter final : public DistributedNotificationCenter
{
public:
    /// `session` must outlive the centre.
    explicit DBusNotificationCenter(DBusSession &session) : m_session(session) {}

    Observation observe(std::string name, Delivery delivery, NotificationHandler handler) override;
    void post(const Notification &notification, Delivery delivery) override;

private:
    void receive(sd_bus_message *message);

    DBusSession &m_session;
    NotificationCenter m_observers;
    std::map<std::string, std::weak_ptr<Observation>> m_matches; ///< kept alive by the observations of the name
};

} // namespace ambertide
