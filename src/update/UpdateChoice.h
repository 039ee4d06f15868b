#pragma once

#include "update/Appcast.h"

#include <compare>
#include <optional>

namespace ambertide {

/// What a release is measured against.
struct RunningVersion
{
    QString version;
    QString displayVersion; ///< the one that people read
};

/// The order of two version texts. First count the numbers that begin them, parted by dots and each below 2^31: 1.10 is
/// newer than 1.9, and 1.0 equals 1.0.0. Where they are equal, a text that follows them marks what comes before the
/// version without it: 1.0b1 and 1.0-beta are older than 1.0. Two such texts are ordered as text, so rc1 is newer than
/// b2, and b9 than b10. A text that begins with no such number counts as 0 with that
/// text behind it.
std::weak_ordering compareVersions(const QString &left, const QString &right);

/// The newest release that is for this system and newer than the running version; of equals the first. Nothing when
/// there is none.
std::optional<AppcastItem> chooseUpdate(const Appcast &appcast, const RunningVersion &running);

/// Whether the running version should not go on without this release, so that it cannot be skipped.
bool isCriticalFor(const AppcastItem &item, const RunningVersion &running);

/// Whether an automatic check stays silent about `item` because a person skipped `skippedVersion`, itself or a newer
/// one. Nothing is skipped when that is empty.
bool isSkipped(const AppcastItem &item, const QString &skippedVersion, const RunningVersion &running);

} // namespace ambertide
