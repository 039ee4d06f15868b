#include "update/UpdateRecord.h"

#include <string_view>

namespace ambertide {

namespace {

constexpr std::string_view lastCheckKey = "SULastCheckTime"; // seconds since the reference date
constexpr std::string_view skippedVersionKey = "SUSkippedVersion";

} // namespace

void UpdateRecord::setLastCheck(Date date) { m_defaults.setDouble(lastCheckKey, date.secondsSinceReference); }

double UpdateRecord::secondsUntilCheck(Date now, double interval) const
{
    if (!m_defaults.hasObject(lastCheckKey))
        return 0;
    const double elapsed = now.secondsSinceReference - m_defaults.doubleValue(lastCheckKey);
    // Written so that what is not a number counts as too short.
    const double wanted = interval > shortestInterval ? interval : shortestInterval;
    return elapsed >= 0 && elapsed < wanted ? wanted - elapsed : 0;
}

QString UpdateRecord::skippedVersion() const
{
    return QString::fromStdString(m_defaults.data(skippedVersionKey).value_or(std::string()));
}

void UpdateRecord::setSkippedVersion(const QString &version)
{
    if (version != skippedVersion())
        m_defaults.setData(skippedVersionKey, version.toStdString());
}

} // namespace ambertide
