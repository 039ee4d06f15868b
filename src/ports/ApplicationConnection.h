#pragma once

#include "base/Notification.h"

#include <optional>
#include <string_view>

namespace ambertide {

/// Port: notifications to and from the running application, for a short-lived tool without an event loop. Every call
/// blocks, for less than 2 s. One thread.
class ApplicationConnection
{
public:
    enum class Outcome {
        done,
        noTransport, ///< this session has no service that carries notifications, or it does not answer
        notRunning,
        noAnswer, ///< the application runs but did not react in time
    };
    struct Answer
    {
        Outcome outcome = Outcome::noAnswer;
        std::optional<Notification> notification; ///< set when `outcome` is done
    };

    virtual ~ApplicationConnection() = default;

    /// Posts, and waits until the application has taken the post.
    virtual Outcome post(const Notification &notification) = 0;

    /// Posts, and waits for the application, and nobody else, to post a notification of the name `answer`.
    virtual Answer request(const Notification &notification, std::string_view answer) = 0;
};

} // namespace ambertide
