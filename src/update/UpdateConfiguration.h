#pragma once

#include "ports/MainBundle.h"
#include "update/HttpsDownloader.h"
#include "update/UpdateChoice.h"
#include "update/signature/SignatureVerifier.h"

#include <QUrl>

#include <functional>
#include <optional>

namespace ambertide {

/// Where updates are announced, whose signatures count, and which version is running.
struct UpdateConfiguration
{
    QUrl feed;
    std::optional<SignatureVerifier> verifier; ///< nothing when the key is absent or a placeholder
    RunningVersion running;
    /// The version that a restart would run; empty when that is not known.
    std::function<QString()> installedVersion = [] { return QString(); };
    TransportSecurity security = TransportSecurity::HttpsOnly;

    /// From "SUFeedURL", "SUPublicEDKey" and the version values of the bundle's information. The bundle must outlive
    /// the result.
    static UpdateConfiguration fromBundle(const MainBundle &bundle);

    /// Whether everything that a check needs is there.
    bool isComplete() const;
};

} // namespace ambertide
