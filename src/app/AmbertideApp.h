#pragma once

#include "app/AppDelegate.h"
#include "integration/SparkleUpdater.h"
#include "model/AppViewModel.h"

#include <functional>

namespace ambertide {

/// The composition root: makes the one model, the updater and the delegate, in this order, over the ports of the system
/// it runs on. Main thread. Destroying it gives the displays back, in the background.
class AmbertideApp
{
public:
    struct Ports
    {
        DisplayServices &displays;
        TaskExecutor &executor;
        SystemWake &wake;
        UserDefaults &userDefaults;
        DistributedNotificationCenter &distributedNotifications;
        RunningApplications &runningApplications;
        const Calendar &calendar;
        const MainBundle &mainBundle;
        UpdaterControllerFactory createUpdaterController;
        std::function<void()> terminate;
        std::function<void()> bringSettingsForward; ///< raises the Settings window when there is one
    };

    explicit AmbertideApp(Ports ports);

    NotificationCenter &notifications() { return m_notifications; }
    AppViewModel &viewModel() { return m_viewModel; }
    SparkleUpdater &updater() { return m_updater; }
    AppDelegate &delegate() { return m_delegate; }

private:
    NotificationCenter m_notifications;
    AppViewModel m_viewModel;
    SparkleUpdater m_updater;
    AppDelegate m_delegate;
};

} // namespace ambertide
