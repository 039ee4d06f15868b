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
/// Main thread, one instance a window. Temperatures are in kelvin. Entries are in the day's order after every change
/// here; those that were loaded are in the order in which they are stored.
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
    /// Registers nothing.
    void setLaunchAtLogin(bool enabled);

    /// The stored flag, whoever wrote it.
    bool scheduleEnabled() const;
    /// Stores the flag, has it followed at once and reads the schedule again.
    void updateScheduleEnabled(bool enabled);

    const std::vector<ScheduleEntry> &scheduleEntries() const { return m_scheduleEntries; }
    /// Reads the stored schedule. What cannot be read is reported, shows as empty and stays stored until the next
    /// change.
    void loadSettings();
    void saveSettings() {} ///< does nothing: every change is stored as it is made
    /// An enabled entry; without a time, at noon.
    void addScheduleEntry(double temperature, std::optional<Date> time = {});
    /// Replaces the first entry with the same identifier, if there is one.
    void updateScheduleEntry(const ScheduleEntry &entry);
    /// Positions beyond the last entry are passed over.
    void deleteScheduleEntry(const std::set<std::size_t> &positions);

    /// The enabled entry that counts at that moment, whether or not the schedule is switched on.
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
