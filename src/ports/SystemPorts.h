#pragma once

#include "ports/TrayIcon.h"

namespace ambertide {

class Appearance;
class Calendar;
class DisplayServices;
class DistributedNotificationCenter;
class HapticPerformer;
class LoginItem;
class MainBundle;
class PanelPlacement;
class PrivilegedRunner;
class RunningApplications;
class SystemWake;
class TaskExecutor;
class UpdateInstaller;
class UserDefaults;

/// All that the application asks of the system it runs on. All of it must outlive the application.
struct SystemPorts
{
    DisplayServices &displays;
    TaskExecutor &executor;
    /// Has a thread of its own, for work that may wait minutes for the user.
    TaskExecutor &installerExecutor;
    UserDefaults &userDefaults;
    DistributedNotificationCenter &distributedNotifications;
    RunningApplications &runningApplications;
    SystemWake &wake;
    const Calendar &calendar;
    const MainBundle &mainBundle;
    LoginItem &loginItem;
    PrivilegedRunner &privilegedRunner;
    UpdateInstaller &updateInstaller;
    Appearance &appearance;
    HapticPerformer &haptics;
    PanelPlacement &placement;
    TrayIconFactory createTrayIcon;
    bool isStartedByPerson; ///< and not by the session at login
};

} // namespace ambertide
