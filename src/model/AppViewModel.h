#pragma once

#include "base/NotificationCenter.h"
#include "base/Task.h"
#include "display/DisplayManager.h"
#include "ports/Calendar.h"
#include "ports/DistributedNotificationCenter.h"
#include "ports/UserDefaults.h"

#include <QObject>

#include <memory>
#include <optional>
#include <vector>

namespace ambertide {

struct ScheduleEntry;

/// The state of the running application: the temperature, whether the schedule is in force, and what follows from a
/// change of either. Whatever changes the temperature does it here.
///
/// Main thread, one instance. Temperatures are in kelvin, whole multiples of 100; the range from 1000 to 6500 is
/// checked where a value comes from outside, not on assignment.
class AppViewModel final : public QObject
{
    Q_OBJECT

public:
    /// What the model works on; all of it must outlive the model.
    struct Ports
    {
        DisplayServices &displays;
        TaskExecutor &executor;
        SystemWake &wake;
        UserDefaults &userDefaults;
        NotificationCenter &notifications;
        DistributedNotificationCenter &distributedNotifications;
        const Calendar &calendar;
    };

    static constexpr double temperatureStep = 100;
    static constexpr double minTemperature = 1000;
    static constexpr double maxTemperature = 6500;
    static constexpr double neutralTemperature = 6500;

    /// Takes the stored temperature, has it applied and begins to answer notifications. A stored value that is out of
    /// range counts as neutral but stays in the store.
    explicit AppViewModel(const Ports &ports);
    /// Gives the displays back, in the background.
    ~AppViewModel() override;

    double temperature() const { return m_temperature; }
    /// Rounds to a multiple of 100, stores that, and has it applied 150 ms after the last such change. A value that is
    /// not finite is ignored.
    void setTemperature(double temperature);
    bool isNeutralTemperature() const { return m_temperature >= neutralTemperature; }
    void resetToDefault() { setTemperature(neutralTemperature); }

    bool scheduleEnabled() const;
    /// Stores the flag and starts or stops the schedule's timer. Emits changed() only if it has changed.
    void setScheduleEnabled(bool enabled);

    /// To be called when the user moves the slider: switches the schedule off.
    void handleManualChange();

    /// Whether a request from outside is accepted: once rounded, it has to be in range.
    static bool acceptsRequest(double temperature);
    /// A request from outside: switches the schedule off and has the temperature applied at once. One that is not
    /// accepted changes nothing.
    void requestTemperature(double temperature);

    /// Why no display shows the temperature; nothing if they do, or while that is not known yet.
    std::optional<TintRefusal> tintRefusal() const { return m_ports.displays.refusal(); }
    /// False while a tint would remain on the displays if the application were killed.
    bool areDisplaysGuarded() const { return m_ports.displays.isGuarded(); }
    /// Whether the schedule has an enabled entry, no matter whether the schedule itself is in force.
    bool isAnythingScheduled() const;

    /// Writes the tint once more. For when the panel opens or closes, or the application becomes active.
    void reapplyCurrentTemperature() { m_displayManager->reapplyCurrentTemperature(); }

Q_SIGNALS:
    /// Something that is shown has changed or is about to.
    void changed();

private:
    double initialTemperature();
    void applyTemperatureWithDebounce();
    void applyTemperatureImmediately();
    void setupScheduleTimer();
    void checkSchedule();
    /// Nothing when there is none or it cannot be read.
    std::optional<std::vector<ScheduleEntry>> loadScheduleEntries() const;
    void applyScheduleEntries(std::vector<ScheduleEntry> entries, const DateComponents &currentComponents);
    /// What scheduleEnabled() was when it was last acted on: the timer exists while it is on.
    bool isScheduleFollowed() const { return static_cast<bool>(m_scheduleTimer); }
    void manualScheduleCheck();
    void handleTemperatureUpdate(const Notification &notification);
    void handleTemperatureRequest();

    Ports m_ports;
    std::shared_ptr<DisplayManager> m_displayManager;
    bool m_isScheduledChange = false; ///< whether the schedule changed the temperature last; nothing reads it
    bool m_isImmediateApplyPending = false;
    bool m_isApplyDelayed = false;     ///< the 150 ms after a change have not passed
    bool m_isRefused = false;          ///< whether there was a tintRefusal() at the last look
    std::optional<double> m_requested; ///< kelvin, by another process, until a pending task takes it up
    Task m_temperatureChangeTask;      ///< the newest debounced apply, pending or past
    double m_temperature = neutralTemperature;
    Task m_scheduleTimer;
    std::shared_ptr<AppViewModel> m_self; ///< owns nothing; tasks hold it weakly and lock it on the main thread
    Observation m_checkScheduleObservation;
    Observation m_updateObservation;
    Observation m_requestObservation;
};

} // namespace ambertide
