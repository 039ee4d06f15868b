#pragma once

#include "ports/MainBundle.h"
#include "update/HttpsDownloader.h"
#include "update/UpdateChoice.h"
#include "update/signature/SignatureVerifier.h"

#include <QUrl>

#include <optional>

namespace ambertide {

/// Where updates are announced, whose signatures count, and which version is running.
struct UpdateConfiguration
{
    QUrl feed;
    std::optional<SignatureVerifier> verifier; ///< nothing when the key is absent or a placeholder
    RunningVersion running;
    TransportSecurity security = TransportSecurity::HttpsOnly;

    /// From "SUFeedURL", "SUPublicEDKey" and the version values of the bundle's information.
    static UpdateConfiguration fromBundle(const MainBundle &bundle);

    /// Whether everything that a check needs is there.
    bool isComplete() const;
};

} // namespace ambertide
