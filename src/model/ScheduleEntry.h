#pragma once

#include "ports/Calendar.h"

#include <QString>
#include <QUuid>

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ambertide {

/// One scheduled temperature: from this time of day on, this many kelvin.
struct ScheduleEntry
{
    QUuid id = QUuid::createUuid();
    Date time; ///< only its local hour and minute count
    double temperature = 0;
    bool isEnabled = true;

    bool operator==(const ScheduleEntry &) const = default;

    /// "Normal (Daylight)" from 6500 K on, else whole kelvin as in "3400K".
    QString temperatureString() const;

    /// Whether the first time of day is strictly the earlier one.
    static bool timeIsBefore(const DateComponents &first, const DateComponents &second);
};

/// A schedule as read from its stored form: either entries or what is wrong with it.
struct DecodedSchedule
{
    std::optional<std::vector<ScheduleEntry>> entries;
    std::string error;
};

/// The stored form of a schedule: a JSON array of objects with "id" (upper-case UUID), "time" (seconds since 2001-01-01
/// UTC), "temperature" (kelvin) and "isEnabled".
std::string encodeSchedule(std::span<const ScheduleEntry> entries);

/// Reads the stored form. Nothing is read unless every entry has all four members with the right types.
DecodedSchedule decodeSchedule(std::string_view bytes);

/// Orders by local time of day; entries of the same time keep their order.
void sortByTimeOfDay(std::vector<ScheduleEntry> &entries, const Calendar &calendar);

/// The enabled entry whose time of day was reached last; of several at the same time, the last in `entries`. Before the
/// first of the day it is the last one, in force since the day before. Nothing when no entry is enabled.
std::optional<ScheduleEntry> entryInForce(std::vector<ScheduleEntry> entries, const DateComponents &now,
                                          const Calendar &calendar);

} // namespace ambertide
