#pragma once

#include <compare>
#include <optional>

namespace ambertide {

/// A point in time: seconds since 2001-01-01 00:00:00 UTC, negative before it.
struct Date
{
    double secondsSinceReference = 0;
    auto operator<=>(const Date &) const = default;
};

/// A time of day. A part that is not known counts as 0 where times are compared.
struct DateComponents
{
    std::optional<int> hour;   ///< 0 to 23
    std::optional<int> minute; ///< 0 to 59
    bool operator==(const DateComponents &) const = default;
};

/// Port: the wall clock and the user's calendar. Safe from any thread. The time zone is looked up anew at each call.
class Calendar
{
public:
    virtual ~Calendar() = default;

    virtual Date now() const = 0;
    /// The local time of day at that point in time; both parts unknown when it cannot be expressed.
    virtual DateComponents timeOfDay(Date date) const = 0;
    /// A point in time with that local time of day, on the same day at every call. Nothing if that day has no such
    /// time.
    virtual std::optional<Date> date(const DateComponents &timeOfDay) const = 0;
};

} // namespace ambertide
