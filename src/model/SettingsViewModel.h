#pragma once

#include "model/AppViewModel.h"
#include "model/ScheduleEntry.h"
#include "ports/LoginItem.h"

#include <QObject>

#include <cstddef>
#include <optional>
#include <set>
#include <vector>

namespace ambertide {

/// What the Settings window shows and edits. It alone writes the stored schedule, and has the application's model look
/// at it after every change.
///
/// Main thread, one instance for each window. Temperatures are in kelvin. Entries are in order of their time of day
/// after every change made here; after loading they are in the order in which they are stored.
class SettingsViewModel final : public QObject
{
    Q_OBJECT

public:
    /// What the model works on; all of it must outlive the model.
    struct Ports
    {
        UserDefaults &userDefaults;
        NotificationCenter &notifications;
        const Calendar &calendar;
        const LoginItem &loginItem;
    };

    static constexpr double temperatureStep = AppViewModel::temperatureStep;
    static constexpr double minTemperature = AppViewModel::minTemperature;
    static constexpr double maxTemperature = AppViewModel::maxTemperature;
    static constexpr double neutralTemperature = AppViewModel::neutralTemperature;

    /// `appViewModel` must outlive this.
    SettingsViewModel(AppViewModel &appViewModel, const Ports &ports);

    int selectedTab() const { return m_selectedTab; }
    void setSelectedTab(int tab);

    /// What the switch shows: at first whether the system starts this application, from then on what was set here.
    bool launchAtLogin() const { return m_launchAtLogin; }
    /// Only changes what the switch shows; registers nothing.
    void setLaunchAtLogin(bool enabled);

    /// The stored flag, whoever wrote it.
    bool scheduleEnabled() const;
    /// Stores the flag, has the application's model act on it at once, and reads the schedule again.
    void updateScheduleEnabled(bool enabled);

    const std::vector<ScheduleEntry> &scheduleEntries() const { return m_scheduleEntries; }
    /// Reads the stored schedule. One that cannot be read is reported and shown as empty, but stays in the store until
    /// the next change.
    void loadSettings();
    void saveSettings() {} ///< does nothing: every change is stored as it is made
    /// Adds an enabled entry, at noon if no time is given.
    void addScheduleEntry(double temperature, std::optional<Date> time = {});
    /// Replaces the first entry with the same identifier, if there is one.
    void updateScheduleEntry(const ScheduleEntry &entry);
    /// Positions beyond the last entry are ignored.
    void deleteScheduleEntry(const std::set<std::size_t> &positions);

    /// The entry in force at the time of day of `now`, whether or not the schedule is switched on.
    std::optional<QUuid> activeEntry(Date now) const;

Q_SIGNALS:
    /// Something that is shown has changed or is about to.
    void changed();

private:
    void publishScheduleEntries();
    void saveScheduleEntries();
    void sortScheduleEntries();
    void checkSchedule();

    int m_selectedTab = 0;
    bool m_launchAtLogin;
    AppViewModel &m_appViewModel;
    Ports m_ports;
    std::vector<ScheduleEntry> m_scheduleEntries;
};

} // namespace ambertide
