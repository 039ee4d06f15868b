#pragma once

#include "base/Notification.h"
#include "base/Observation.h"

namespace ambertide {

/// Whether a post may wait while its receiver is suspended. Systems that never hold posts back treat both alike.
enum class Delivery { standard, immediate };

/// Port: notifications by name between the processes of one user's session.
///
/// Main thread. Anyone may post: payloads are untrusted. A poster that observes the name receives its own post. Without
/// a working transport posts go nowhere and observers hear nothing; neither is an error here.
class DistributedNotificationCenter
{
public:
    virtual ~DistributedNotificationCenter() = default;

    virtual Observation observe(std::string name, Delivery delivery, NotificationHandler handler) = 0;
    virtual void post(const Notification &notification, Delivery delivery) = 0;
};

} // namespace ambertide
