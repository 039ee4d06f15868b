#pragma once

#include "update/Appcast.h"

#include <compare>
#include <optional>

namespace ambertide {

/// What releases are compared with.
struct RunningVersion
{
    QString version;
    QString displayVersion; ///< the one shown to the user
};

/// The order of two versions. First count the numbers that they begin with, separated by dots and each below 2^31: 1.10
/// is newer than 1.9, and 1.0 equals 1.0.0. Where these are equal, a version with a suffix is older than one without:
/// 1.0b1 and 1.0-beta come before 1.0. Two suffixes are compared as texts, so rc1 is newer than b2, and b9 than b10. A
/// version that does not begin with such a number counts as 0 with all of it as the suffix.
std::weak_ordering compareVersions(const QString &left, const QString &right);

/// The newest release that is for this system and newer than the running version; the first of equal ones. Nothing when
/// there is none.
std::optional<AppcastItem> chooseUpdate(const Appcast &appcast, const RunningVersion &running);

/// Whether the release is critical for the running version, and so cannot be skipped.
bool isCriticalFor(const AppcastItem &item, const RunningVersion &running);

/// Whether an automatic check stays silent about `item`, because the user skipped it or a newer one: `skippedVersion`,
/// which is empty if nothing was skipped. A release that is critical for the running version never is.
bool isSkipped(const AppcastItem &item, const QString &skippedVersion, const RunningVersion &running);

} // namespace ambertide
