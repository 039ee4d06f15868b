#pragma once

#include <QString>

namespace ambertide {

/// Why a check or an installation came to nothing.
struct UpdateFailure
{
    enum class Kind {
        NotConfigured, ///< this build has no usable feed location or key
        NotSecure,     ///< a location or a redirect that is not HTTPS
        Unreachable,   ///< no network, no such host, refused, broken off
        TimedOut,
        ServerError, ///< the server answered with an error
        TooLarge,
        FeedUnreadable,
        BadSignature, ///< none, malformed, or not made with the key over these bytes
        CannotStore,  ///< no room or no right to keep the package
        NotAuthorised,
        CannotInstall,
    };

    Kind kind;
    QString detail; ///< one technical line, not translated; may be empty
};

} // namespace ambertide
