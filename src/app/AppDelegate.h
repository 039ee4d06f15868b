#pragma once

#include "base/NotificationCenter.h"
#include "base/Task.h"
#include "ports/DistributedNotificationCenter.h"
#include "ports/MainBundle.h"
#include "ports/RunningApplications.h"
#include "ports/SystemWake.h"
#include "ports/UserDefaults.h"

#include <functional>
#include <memory>
#include <optional>

namespace ambertide {

/// What the application does as a process: makes sure that only one copy runs, takes the requests of the command-line
/// tool, and until the end has the schedule checked every 5 seconds and after wake. Main thread.
class AppDelegate
{
public:
    /// All of it must outlive the delegate.
    struct Ports
    {
        const MainBundle &mainBundle;
        RunningApplications &runningApplications;
        NotificationCenter &notifications;
        DistributedNotificationCenter &distributedNotifications;
        SystemWake &wake;
        UserDefaults &userDefaults;
        TaskExecutor &executor;
        std::function<void()> terminate;            ///< ends the application soon after it returns
        std::function<void()> bringSettingsForward; ///< raises the Settings window when there is one
    };

    explicit AppDelegate(Ports ports);
    ~AppDelegate();
    AppDelegate(const AppDelegate &) = delete;
    AppDelegate &operator=(const AppDelegate &) = delete;

    /// To be called once, when the models exist. If another copy runs, it asks for termination and does nothing else.
    /// If another copy becomes the running one later, it asks for termination then.
    void applicationDidFinishLaunching();
    /// To be called once, when the application is about to end. The displays are not given back here.
    void applicationWillTerminate();
    /// The application lives on in the tray.
    bool applicationShouldTerminateAfterLastWindowClosed() const { return false; }
    bool applicationShouldHandleReopen(bool /*hasVisibleWindows*/) const { return true; } ///< does nothing else

private:
    bool ensureSingleInstance();
    void handleNewInstanceLaunch();
    void windowDidBecomeKey(const Notification &) {} ///< does nothing
    void handleCLITemperatureChange(const Notification &notification);
    void handleWakeNotification();
    void postCheckScheduleNow();
    void startBackgroundSchedulerCheck();
    void summarisePosts();

    Ports m_ports;
    bool m_hasLaunchedBefore = false; ///< this is the only copy; nothing reads it
    Task m_backgroundTask;            ///< the loop that has the schedule checked
    int m_posts = 0;                  ///< since that loop's last turn
    std::shared_ptr<std::optional<long long>> m_requested =
        std::make_shared<std::optional<long long>>(); ///< kelvin, until a pending task stores it
    Observation m_othersObservation;
    Observation m_instanceObservation;
    Observation m_wakeObservation;
    Observation m_cliObservation;
};

} // namespace ambertide
