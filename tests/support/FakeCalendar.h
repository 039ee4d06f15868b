#pragma once

#include "ports/Calendar.h"

#include <cmath>

namespace ambertide {

/// A clock that stands where the test has put it, in a zone without clock changes.
class FakeCalendar final : public Calendar
{
public:
    Date current;

    static Date at(int hour, int minute) { return {hour * 3600.0 + minute * 60.0}; }

    Date now() const override { return current; }
    DateComponents timeOfDay(Date date) const override
    {
        const double ofDay = date.secondsSinceReference - std::floor(date.secondsSinceReference / 86400) * 86400;
        const int minutes = static_cast<int>(ofDay / 60);
        return {.hour = minutes / 60, .minute = minutes % 60};
    }
    std::optional<Date> date(const DateComponents &timeOfDay) const override
    {
        return at(timeOfDay.hour.value_or(0), timeOfDay.minute.value_or(0));
    }
};

} // namespace ambertide
