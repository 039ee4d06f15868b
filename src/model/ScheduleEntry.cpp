#include "model/ScheduleEntry.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <ranges>
#include <utility>

namespace ambertide {

namespace {

constexpr double daylight = 6500;
constexpr QLatin1String idKey("id");
constexpr QLatin1String timeKey("time");
constexpr QLatin1String temperatureKey("temperature");
constexpr QLatin1String isEnabledKey("isEnabled");

/// Accepts only the canonical form, 8-4-4-4-12 hexadecimal digits in either case.
std::optional<QUuid> decodeIdentifier(const QJsonValue &value)
{
    const auto text = value.toString();
    const auto identifier = QUuid::fromString(text);
    if (identifier.toString(QUuid::WithoutBraces).compare(text, Qt::CaseInsensitive) != 0)
        return std::nullopt;
    return identifier;
}

/// The name of the first member that is missing or of the wrong type; empty when `entry` has been read.
QLatin1String decodeEntry(const QJsonObject &object, ScheduleEntry &entry)
{
    const auto identifier = decodeIdentifier(object.value(idKey));
    if (!identifier)
        return idKey;
    const auto time = object.value(timeKey);
    if (!time.isDouble())
        return timeKey;
    const auto temperature = object.value(temperatureKey);
    if (!temperature.isDouble())
        return temperatureKey;
    const auto isEnabled = object.value(isEnabledKey);
    if (!isEnabled.isBool())
        return isEnabledKey;
    entry = {.id = *identifier,
             .time = {time.toDouble()},
             .temperature = temperature.toDouble(),
             .isEnabled = isEnabled.toBool()};
    return {};
}

} // namespace

QString ScheduleEntry::temperatureString() const
{
    if (temperature >= daylight)
        return QCoreApplication::translate("ambertide::ScheduleEntry", "Normal (Daylight)");
    return QCoreApplication::translate("ambertide::ScheduleEntry", "%1K").arg(std::trunc(temperature), 0, 'f', 0);
}

bool ScheduleEntry::timeIsBefore(const DateComponents &first, const DateComponents &second)
{
    return std::pair(first.hour.value_or(0), first.minute.value_or(0)) <
           std::pair(second.hour.value_or(0), second.minute.value_or(0));
}

std::string encodeSchedule(std::span<const ScheduleEntry> entries)
{
    QJsonArray array;
    for (const auto &entry : entries) {
        array.append(QJsonObject{{idKey, entry.id.toString(QUuid::WithoutBraces).toUpper()},
                                 {timeKey, entry.time.secondsSinceReference},
                                 {temperatureKey, entry.temperature},
                                 {isEnabledKey, entry.isEnabled}});
    }
    return QJsonDocument(array).toJson(QJsonDocument::Compact).toStdString();
}

DecodedSchedule decodeSchedule(std::string_view bytes)
{
    QJsonParseError parseError;
    const auto document = QJsonDocument::fromJson(
        QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size())), &parseError);
    if (parseError.error != QJsonParseError::NoError)
        return {{}, parseError.errorString().toStdString()};
    if (!document.isArray())
        return {{}, "the schedule is not a list"};

    std::vector<ScheduleEntry> entries;
    const auto array = document.array();
    for (const auto &element : array) {
        if (const auto member = decodeEntry(element.toObject(), entries.emplace_back()); !member.isEmpty()) {
            return {{}, "entry " + std::to_string(entries.size()) + " has no valid \"" + member.data() + '"'};
        }
    }
    return {std::move(entries), {}};
}

void sortByTimeOfDay(std::vector<ScheduleEntry> &entries, const Calendar &calendar)
{
    // The calendar is asked once for each entry: looking up the time zone is the expensive part.
    std::vector<std::pair<DateComponents, ScheduleEntry>> timed;
    timed.reserve(entries.size());
    for (const auto &entry : entries)
        timed.emplace_back(calendar.timeOfDay(entry.time), entry);
    std::ranges::stable_sort(timed, ScheduleEntry::timeIsBefore, &decltype(timed)::value_type::first);
    std::ranges::copy(timed | std::views::values, entries.begin());
}

std::optional<ScheduleEntry> entryInForce(std::vector<ScheduleEntry> entries, const DateComponents &now,
                                          const Calendar &calendar)
{
    std::erase_if(entries, [](const ScheduleEntry &entry) { return !entry.isEnabled; });
    if (entries.empty())
        return std::nullopt;
    sortByTimeOfDay(entries, calendar);
    const auto firstLater = std::ranges::partition_point(entries, [&](const ScheduleEntry &entry) {
        return !ScheduleEntry::timeIsBefore(now, calendar.timeOfDay(entry.time));
    });
    return firstLater == entries.begin() ? entries.back() : *std::prev(firstLater);
}

} // namespace ambertide
