#include "app/AppDelegate.h"

#include "base/Console.h"
#include "protocol/DefaultsKeys.h"
#include "protocol/Notifications.h"

#include <algorithm>
#include <chrono>
#include <string>
#include <utility>

namespace ambertide {

using namespace std::chrono_literals;

namespace {

/// How many notifications are printed between two turns of the 5-second loop: a flood of them must not fill the log.
constexpr int mostPostsPrinted = 20;

std::string describe(const Notification &notification)
{
    return "{name = " + notification.name +
           (notification.userInfo ? ", userInfo = " + describe(*notification.userInfo) : std::string()) + '}';
}

} // namespace

AppDelegate::AppDelegate(Ports ports) : m_ports(std::move(ports)) {}

AppDelegate::~AppDelegate() { m_backgroundTask.cancel(); }

void AppDelegate::applicationDidFinishLaunching()
{
    if (!ensureSingleInstance()) {
        m_ports.terminate();
        return;
    }
    m_hasLaunchedBefore = true;
    m_othersObservation = m_ports.runningApplications.observeOthers([this] {
        if (!ensureSingleInstance())
            m_ports.terminate();
    });
    m_wakeObservation = m_ports.wake.observe([this] { handleWakeNotification(); });
    console::print("Registering for CLI temperature notifications...");
    m_cliObservation = m_ports.distributedNotifications.observe(
        notifications::updateTemperature, Delivery::immediate,
        [this](const Notification &notification) { handleCLITemperatureChange(notification); });
    startBackgroundSchedulerCheck();
}

void AppDelegate::applicationWillTerminate()
{
    m_wakeObservation.release();
    m_backgroundTask.cancel();
}

bool AppDelegate::ensureSingleInstance()
{
    const auto identifier = m_ports.mainBundle.identifier();
    if (!identifier) {
        console::print("Warning: Could not get bundle identifier");
        return true;
    }
    auto others = m_ports.runningApplications.withIdentifier(*identifier);
    std::erase_if(others, [own = m_ports.runningApplications.currentProcessIdentifier()](const auto &application) {
        return application.processIdentifier == own;
    });
    if (others.empty()) {
        m_instanceObservation = m_ports.distributedNotifications.observe(
            notifications::instance, Delivery::standard, [this](const Notification &) { handleNewInstanceLaunch(); });
        return true;
    }
    const auto &other = others.front();
    console::print("Another instance of Ambertide is already running (PID: " + std::to_string(other.processIdentifier) +
                   ")");
    m_ports.runningApplications.activate(other);
    m_ports.distributedNotifications.post(notifications::withoutUserInfo(notifications::instance), Delivery::standard);
    return false;
}

void AppDelegate::handleNewInstanceLaunch() { m_ports.bringSettingsForward(); }

void AppDelegate::handleCLITemperatureChange(const Notification &notification)
{
    const bool isPrinted = ++m_posts <= mostPostsPrinted;
    if (isPrinted)
        console::print("Received CLI temperature change notification: " + describe(notification));
    const auto temperature = notifications::integerTemperature(notification);
    if (!temperature) {
        if (isPrinted)
            console::print("No valid temperature found in notification: " +
                           describe(notification.userInfo.value_or(UserInfo())));
        return;
    }
    if (isPrinted)
        console::print("Setting temperature to " + std::to_string(*temperature) + "K");
    // A pending task stores the newest request when it runs, so one is enough.
    if (std::exchange(*m_requested, *temperature))
        return;
    // Not range-checked: the model does that for what it applies, and again when it reads the store.
    Task::startOnMain(m_ports.executor,
                      [&userDefaults = m_ports.userDefaults, &center = m_ports.notifications,
                       requested = m_requested](TaskContext) -> Async {
                          const auto kelvin = **requested;
                          requested->reset();
                          userDefaults.setInteger(defaults::temperature, kelvin);
                          center.post({.name = notifications::updateTemperature,
                                       .userInfo = UserInfo{{notifications::temperatureKey, kelvin}}});
                          co_return;
                      });
}

void AppDelegate::summarisePosts()
{
    if (const int posts = std::exchange(m_posts, 0); posts > mostPostsPrinted)
        console::print("Received " + std::to_string(posts - mostPostsPrinted) + " more such notifications");
}

void AppDelegate::handleWakeNotification() { postCheckScheduleNow(); }

void AppDelegate::postCheckScheduleNow()
{
    m_ports.notifications.post(notifications::withoutUserInfo(notifications::checkScheduleNow));
}

void AppDelegate::startBackgroundSchedulerCheck()
{
    m_backgroundTask.cancel();
    m_backgroundTask = Task::start(m_ports.executor, [this](TaskContext context) -> Async {
        while (!context.isCancelled()) {
            co_await context.onMain();
            context.throwIfCancelled(); // a cancelled task may have outlived the delegate
            postCheckScheduleNow();
            summarisePosts();
            co_await context.sleep(5s);
        }
    });
}

} // namespace ambertide
