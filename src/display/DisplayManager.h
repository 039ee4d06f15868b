#pragma once

#include "base/Observation.h"
#include "base/Task.h"
#include "ports/DisplayServices.h"
#include "ports/SystemWake.h"

#include <atomic>
#include <memory>
#include <mutex>

namespace ambertide {

/// Puts a colour temperature on every active display and keeps it there.
///
/// Temperatures are in kelvin. What is shown lies between 2000 and 6500; 6500 is neutral and is never shown by tables:
/// the displays get the system's own colours back. A change is a ramp of 60 steps in about 2 seconds; the current tint
/// is written again every 2 seconds and after wake, because other software resets it. Nothing here reports a failure:
/// the next pass repairs what went wrong.
///
/// Any thread may call. Its tasks keep it alive; the ports must outlive it.
class DisplayManager : public std::enable_shared_from_this<DisplayManager>
{
    struct Private
    {
    };

public:
    /// Also makes this manager the one that a SIGTERM or SIGINT resets, installs the handler for both, listens for the
    /// machine's wake and starts the periodic pass. Touches no display. Main thread.
    static std::shared_ptr<DisplayManager> create(DisplayServices &displays, TaskExecutor &executor, SystemWake &wake);

    DisplayManager(Private, DisplayServices &displays, TaskExecutor &executor);
    ~DisplayManager();
    DisplayManager(const DisplayManager &) = delete;
    DisplayManager &operator=(const DisplayManager &) = delete;

    /// The committed temperature: that of the last ramp that was completed, or 6500 after a reset.
    double temperature() const { return m_temperature; }

    /// Whether the newest request that was not dropped was for `temperature`, clamped to what can be shown.
    bool isShowing(double temperature);

    /// Starts a ramp from what is shown now to `temperature`, clamped to 2000 to 6500, in place of the running one.
    /// Blocks the caller for 50 ms. While a ramp runs, a request less than 100 K away from the committed temperature is
    /// dropped.
    void setTemperature(double temperature);

    /// Hands the tables of the committed temperature to all displays before it returns; does nothing at neutral.
    void reapplyCurrentTemperature();

    /// Ends the ramp and, in the background, gives the displays back and commits 6500. The next ramp still starts from
    /// what the last one showed.
    void reset();

    /// The tables of a black body at `temperature` (not clamped): straight lines from 0, each channel's slope its share
    /// of the white point, cut off at 1. Pure.
    static GammaTables createGammaTables(double temperature);

private:
    void start(SystemWake &wake);
    void applyColorTemperature(double temperature);
    void restoreSystemColours();
    void announceRamp(double to);
    void publish(double temperature);
    Async transition(TaskContext context, double from, double to);
    Async smoothTransition(TaskContext context, double from, double to);
    Async leaveNeutral(TaskContext context, double to);
    void startMaintenanceTask();
    void handleWakeNotification();

    static constexpr double neutralTemperature = 6500;
    static constexpr double minTemperature = 2000;
    static constexpr double maxTemperature = 6500;
    static constexpr double transitionDuration = 2; ///< seconds; not used: rampSteps and rampInterval decide

    DisplayServices &m_displays;
    TaskExecutor &m_executor;

    std::atomic<double> m_temperature = neutralTemperature; ///< written under the lock by a ramp, read without it
    double m_currentTransitionTemp = neutralTemperature;    ///< the last value that a ramp has shown
    double m_target = neutralTemperature;                   ///< of the newest ramp or reset
    const bool m_shouldRun = true;                          ///< not used
    bool m_isTransitioning = false;                         ///< a ramp has been scheduled and has not ended
    std::mutex m_transitionLock; ///< guards the variables above; never held across a display call or a suspension
    TaskSlot m_transitionTask;   ///< the running ramp or the running reset
    TaskSlot m_maintenanceTask;
    Observation m_wakeObservation;
};

} // namespace ambertide
