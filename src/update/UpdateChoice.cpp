#include "update/UpdateChoice.h"

#include "update/VersionComparator.h"

#include <algorithm>

namespace ambertide {

namespace {

std::weak_ordering compare(const QString &left, const QString &right)
{
    return compareVersions(left.toStdString(), right.toStdString());
}

bool isEligible(const AppcastItem &item, const RunningVersion &running)
{
    const bool canBeUsed = item.packageLink.isEmpty() ? isInformationalFor(item, running) : true;
    return canBeUsed && item.operatingSystem == QLatin1String("linux") && item.channel.isEmpty() &&
           compare(item.version, running.version) > 0 &&
           (item.minimumSystemVersion.isEmpty() || compare(item.minimumSystemVersion, running.systemVersion) <= 0);
}

} // namespace

std::optional<AppcastItem> chooseUpdate(const Appcast &appcast, const RunningVersion &running)
{
    const AppcastItem *best = nullptr;
    for (const auto &item : appcast.items) {
        if (isEligible(item, running) && (best == nullptr || compare(item.version, best->version) > 0))
            best = &item;
    }
    return best != nullptr ? std::optional(*best) : std::nullopt;
}

bool isCriticalFor(const AppcastItem &item, const RunningVersion &running)
{
    return item.isCritical &&
           (item.criticalBelowVersion.isEmpty() || compare(running.version, item.criticalBelowVersion) < 0);
}

bool isInformationalFor(const AppcastItem &item, const RunningVersion &running)
{
    const bool isForAll = item.informationalVersions.empty() && item.informationalBelowVersion.isEmpty();
    const auto isRunning = [&](const QString &version) { return compare(version, running.version) == 0; };
    return item.isInformational && (isForAll || std::ranges::any_of(item.informationalVersions, isRunning) ||
                                    (!item.informationalBelowVersion.isEmpty() &&
                                     compare(running.version, item.informationalBelowVersion) < 0));
}

bool isSkipped(const AppcastItem &item, const QString &skippedVersion, const RunningVersion &running)
{
    return !skippedVersion.isEmpty() && compare(item.version, skippedVersion) <= 0 && !isCriticalFor(item, running);
}

} // namespace ambertide
