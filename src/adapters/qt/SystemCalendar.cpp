#include "adapters/qt/SystemCalendar.h"

#include <chrono>
#include <cmath>
#include <ctime>

namespace ambertide {

namespace {

/// 2001-01-01 00:00:00 UTC in seconds since 1970-01-01 00:00:00 UTC.
constexpr double referenceDate = 978307200;
/// Some 30 million years: far beyond any calendar, far within the range of time_t.
constexpr double farthestDate = 1e15;

} // namespace

Date SystemCalendar::now() const
{
    const std::chrono::duration<double> sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return {sinceEpoch.count() - referenceDate};
}

DateComponents SystemCalendar::timeOfDay(Date date) const
{
    const double sinceEpoch = std::floor(date.secondsSinceReference + referenceDate);
    if (!(std::abs(sinceEpoch) < farthestDate))
        return {};
    const auto time = static_cast<std::time_t>(sinceEpoch);
    std::tm local = {};
    tzset();
    if (localtime_r(&time, &local) == nullptr)
        return {};
    return {.hour = local.tm_hour, .minute = local.tm_min};
}

std::optional<Date> SystemCalendar::date(const DateComponents &timeOfDay) const
{
    const DateComponents wanted = {.hour = timeOfDay.hour.value_or(0), .minute = timeOfDay.minute.value_or(0)};
    // On 2001-01-01 or, where the clocks were put forward over that time, on the day after.
    for (const int day : {1, 2}) {
        std::tm local = {};
        local.tm_year = 2001 - 1900;
        local.tm_mday = day;
        local.tm_hour = *wanted.hour;
        local.tm_min = *wanted.minute;
        local.tm_isdst = -1;
        const Date date = {static_cast<double>(std::mktime(&local)) - referenceDate};
        if (this->timeOfDay(date) == wanted)
            return date;
    }
    return std::nullopt;
}

} // namespace ambertide
