#pragma once

#include "ports/Calendar.h"
#include "ports/UserDefaults.h"

#include <QString>

#include <optional>

namespace ambertide {

/// What update checking remembers from one start to the next, for all controllers alike. Main thread.
class UpdateRecord
{
public:
    static constexpr double shortestInterval = 3600; ///< seconds

    /// `defaults` must outlive it.
    explicit UpdateRecord(UserDefaults &defaults) : m_defaults(defaults) {}

    void setLastCheck(Date date);
    /// Seconds from `now` until a check is due; 0 when it is. There being no last check, or one in the future, means
    /// due.
    double secondsUntilCheck(Date now, double interval) const;

    /// The version that a person chose to skip; empty when none.
    QString skippedVersion() const;
    void setSkippedVersion(const QString &version);

private:
    UserDefaults &m_defaults;
};

} // namespace ambertide
