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
        FeedUnreadable, ///< these bytes are not signed with a key of ours, or are not a feed
        FeedOutdated,   ///< older than one that was seen before, or no longer valid
        BadSignature,   ///< of the package: missing, malformed, or not made with a key of ours over these bytes
        CannotStore,    ///< no room or no right to keep the package
        NotAuthorised,
        WrongPackage, ///< not the one that the feed announced
        NotAPackage,  ///< this application was not installed as one
        Busy,         ///< something else is being installed
        CannotInstall,
    };

    Kind kind;
    QString detail; ///< one technical line for the console, not translated; may be empty
};

} // namespace ambertide
