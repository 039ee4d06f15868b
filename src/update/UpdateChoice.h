#pragma once

#include "update/Appcast.h"

#include <optional>

namespace ambertide {

/// What a release is measured against.
struct RunningVersion
{
    QString version;
    QString displayVersion; ///< the one that people read
    QString systemVersion;  ///< the kernel's, the one number that means the same in every distribution
};

/// The newest release of the default channel that is for this system and newer than the running version; of equals the
/// first. Nothing when there is none.
std::optional<AppcastItem> chooseUpdate(const Appcast &appcast, const RunningVersion &running);

/// Whether the running version should not go on without this release, so that it cannot be skipped.
bool isCriticalFor(const AppcastItem &item, const RunningVersion &running);

/// Whether the release is to be read about, not to be installed from here.
bool isInformationalFor(const AppcastItem &item, const RunningVersion &running);

/// Whether an automatic check stays silent about `item` because a person skipped `skippedVersion`, itself or a newer
/// one. Nothing is skipped when that is empty.
bool isSkipped(const AppcastItem &item, const QString &skippedVersion, const RunningVersion &running);

} // namespace ambertide
