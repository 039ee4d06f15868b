#include "update/UpdateChoice.h"

#include <QVersionNumber>

namespace ambertide {

namespace {

bool isEligible(const AppcastItem &item, const RunningVersion &running)
{
    return !item.packageLink.isEmpty() && item.operatingSystem == QLatin1String("linux") &&
           compareVersions(item.version, running.version) > 0;
}

} // namespace

std::weak_ordering compareVersions(const QString &left, const QString &right)
{
    qsizetype leftEnd = 0;
    qsizetype rightEnd = 0;
    const auto leftNumbers = QVersionNumber::fromString(left, &leftEnd).normalized();
    const auto rightNumbers = QVersionNumber::fromString(right, &rightEnd).normalized();
    if (const int order = QVersionNumber::compare(leftNumbers, rightNumbers); order != 0)
        return order <=> 0;
    const QString leftSuffix = left.mid(leftEnd);
    const QString rightSuffix = right.mid(rightEnd);
    if (leftSuffix.isEmpty() || rightSuffix.isEmpty())
        return leftSuffix.isEmpty() <=> rightSuffix.isEmpty();
    return leftSuffix.compare(rightSuffix) <=> 0;
}

std::optional<AppcastItem> chooseUpdate(const Appcast &appcast, const RunningVersion &running)
{
    const AppcastItem *best = nullptr;
    for (const auto &item : appcast.items) {
        if (isEligible(item, running) && (best == nullptr || compareVersions(item.version, best->version) > 0))
            best = &item;
    }
    return best != nullptr ? std::optional(*best) : std::nullopt;
}

bool isCriticalFor(const AppcastItem &item, const RunningVersion &running)
{
    return item.isCritical &&
           (item.criticalBelowVersion.isEmpty() || compareVersions(running.version, item.criticalBelowVersion) < 0);
}

bool isSkipped(const AppcastItem &item, const QString &skippedVersion, const RunningVersion &running)
{
    return !skippedVersion.isEmpty() && compareVersions(item.version, skippedVersion) <= 0 &&
           !isCriticalFor(item, running);
}

} // namespace ambertide
