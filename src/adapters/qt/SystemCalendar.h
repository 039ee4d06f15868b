#pragma once

#include "ports/Calendar.h"

namespace ambertide {

/// The C library's clock and time zone. A changed /etc/localtime is noticed at the next call.
class SystemCalendar final : public Calendar
{
public:
    Date now() const override;
    DateComponents timeOfDay(Date date) const override;
    std::optional<Date> date(const DateComponents &timeOfDay) const override;
};

} // namespace ambertide
