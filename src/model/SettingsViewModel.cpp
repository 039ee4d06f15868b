#include "model/SettingsViewModel.h"

#include "base/Console.h"
#include "protocol/DefaultsKeys.h"
#include "protocol/Notifications.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

namespace ambertide {

SettingsViewModel::SettingsViewModel(AppViewModel &appViewModel, const Ports &ports)
    : m_launchAtLogin(ports.loginItem.status() == LoginItemStatus::Enabled), m_appViewModel(appViewModel),
      m_ports(ports)
{
    loadSettings();
    connect(&appViewModel, &AppViewModel::changed, this, &SettingsViewModel::changed);
}

void SettingsViewModel::setSelectedTab(int tab)
{
    if (std::exchange(m_selectedTab, tab) != tab)
        Q_EMIT changed();
}

void SettingsViewModel::setLaunchAtLogin(bool enabled)
{
    if (std::exchange(m_launchAtLogin, enabled) != enabled)
        Q_EMIT changed();
}

bool SettingsViewModel::scheduleEnabled() const { return m_ports.userDefaults.boolValue(defaults::scheduleEnabled); }

void SettingsViewModel::updateScheduleEnabled(bool enabled)
{
    console::print(std::string("SettingsViewModel: Updating schedule enabled state to: ") +
                   (enabled ? "true" : "false"));
    m_appViewModel.setScheduleEnabled(enabled);
    loadSettings();
    if (m_scheduleEntries.empty()) {
        console::print("No schedule entries found when enabling schedule");
        return;
    }
    console::print("Notifying app to check schedule with " + std::to_string(m_scheduleEntries.size()) + " entries");
    checkSchedule();
}

void SettingsViewModel::loadSettings()
{
    const auto stored = m_ports.userDefaults.data(defaults::scheduleEntries);
    if (!stored)
        return;
    auto decoded = decodeSchedule(*stored);
    if (!decoded.entries)
        console::print("Error decoding schedule entries: " + decoded.error);
    m_scheduleEntries = std::move(decoded.entries).value_or(std::vector<ScheduleEntry>());
    Q_EMIT changed();
}

void SettingsViewModel::addScheduleEntry(double temperature, std::optional<Date> time)
{
    if (!time)
        time = m_ports.calendar.date({.hour = 12, .minute = 0});
    m_scheduleEntries.push_back({.time = time.value_or(m_ports.calendar.now()), .temperature = temperature});
    sortScheduleEntries();
    publishScheduleEntries();
}

void SettingsViewModel::updateScheduleEntry(const ScheduleEntry &entry)
{
    const auto found = std::ranges::find(m_scheduleEntries, entry.id, &ScheduleEntry::id);
    if (found == m_scheduleEntries.end())
        return;
    *found = entry;
    sortScheduleEntries();
    publishScheduleEntries();
}

void SettingsViewModel::deleteScheduleEntry(const std::set<std::size_t> &positions)
{
    std::size_t position = 0;
    std::erase_if(m_scheduleEntries, [&](const ScheduleEntry &) { return positions.contains(position++); });
    publishScheduleEntries();
}

std::optional<QUuid> SettingsViewModel::activeEntry(Date now) const
{
    const auto entry = entryInForce(m_scheduleEntries, m_ports.calendar.timeOfDay(now), m_ports.calendar);
    return entry ? std::optional(entry->id) : std::nullopt;
}

void SettingsViewModel::sortScheduleEntries() { sortByTimeOfDay(m_scheduleEntries, m_ports.calendar); }

void SettingsViewModel::publishScheduleEntries()
{
    saveScheduleEntries();
    Q_EMIT changed();
    if (scheduleEnabled())
        checkSchedule();
}

void SettingsViewModel::saveScheduleEntries()
{
    // JSON has neither infinity nor NaN, and a schedule that cannot be read again would be lost as a whole.
    const auto isStorable = [](const ScheduleEntry &entry) {
        return std::isfinite(entry.time.secondsSinceReference) && std::isfinite(entry.temperature);
    };
    if (!std::ranges::all_of(m_scheduleEntries, isStorable)) {
        console::print("Error encoding schedule entries: a time or temperature is no number");
        return;
    }
    m_ports.userDefaults.setData(defaults::scheduleEntries, encodeSchedule(m_scheduleEntries));
}

void SettingsViewModel::checkSchedule()
{
    m_ports.notifications.post(notifications::withoutUserInfo(notifications::checkScheduleNow));
}

} // namespace ambertide
