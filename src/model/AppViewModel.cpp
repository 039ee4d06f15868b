#include "model/AppViewModel.h"

#include "model/ScheduleEntry.h"
#include "protocol/DefaultsKeys.h"
#include "protocol/Notifications.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <string>
#include <utility>

namespace ambertide {

using namespace std::chrono_literals;

namespace {

double roundedToStep(double temperature)
{
    return std::round(temperature / AppViewModel::temperatureStep) * AppViewModel::temperatureStep;
}

/// False for what is no number, too.
bool isInRange(double temperature)
{
    return temperature >= AppViewModel::minTemperature && temperature <= AppViewModel::maxTemperature;
}

/// The temperature of the entry in force, rounded; nothing when the schedule is off, empty, unreadable or all disabled.
std::optional<double> scheduledTemperature(UserDefaults &userDefaults, const Calendar &calendar)
{
    if (!userDefaults.boolValue(defaults::scheduleEnabled))
        return std::nullopt;
    const auto now = calendar.timeOfDay(calendar.now());
    const auto stored = userDefaults.data(defaults::scheduleEntries);
    if (!stored)
        return std::nullopt;
    const auto decoded = decodeSchedule(*stored);
    if (!decoded.entries)
        return std::nullopt;
    const auto entry = entryInForce(*decoded.entries, now, calendar);
    return entry ? std::optional(roundedToStep(entry->temperature)) : std::nullopt;
}

} // namespace

AppViewModel::AppViewModel(const Ports &ports)
    : m_ports(ports), m_displayManager(DisplayManager::create(ports.displays, ports.executor, ports.wake)),
      m_temperature(initialTemperature()), m_self(this, [](AppViewModel *) {})
{
    applyTemperatureImmediately();
    setupScheduleTimer();
    m_checkScheduleObservation = m_ports.notifications.observe(notifications::checkScheduleNow,
                                                               [this](const Notification &) { manualScheduleCheck(); });
    m_updateObservation = m_ports.distributedNotifications.observe(
        notifications::updateTemperature, Delivery::standard,
        [this](const Notification &notification) { handleTemperatureUpdate(notification); });
    m_requestObservation =
        m_ports.distributedNotifications.observe(notifications::getTemperature, Delivery::standard,
                                                 [this](const Notification &) { handleTemperatureRequest(); });
}

AppViewModel::~AppViewModel()
{
    m_self.reset();
    m_temperatureChangeTask.cancel();
    m_scheduleTimer.cancel();
    m_displayManager->reset();
}

double AppViewModel::initialTemperature()
{
    if (!m_ports.userDefaults.hasObject(defaults::temperature)) {
        m_ports.userDefaults.setDouble(defaults::temperature, neutralTemperature);
        return neutralTemperature;
    }
    const double stored = roundedToStep(m_ports.userDefaults.doubleValue(defaults::temperature));
    return isInRange(stored) ? stored : neutralTemperature;
}

void AppViewModel::setTemperature(double temperature)
{
    const double rounded = roundedToStep(temperature);
    if (!std::isfinite(rounded))
        return;
    m_temperature = rounded;
    m_ports.userDefaults.setDouble(defaults::temperature, m_temperature);
    applyTemperatureWithDebounce();
    Q_EMIT changed();
}

void AppViewModel::applyTemperatureWithDebounce()
{
    m_temperatureChangeTask.cancel();
    m_temperatureChangeTask =
        Task::start(m_ports.executor, [weak = std::weak_ptr(m_self)](TaskContext context) -> Async {
            co_await context.sleep(150ms);
            co_await context.onMain();
            if (const auto self = weak.lock())
                self->m_displayManager->setTemperature(self->m_temperature);
        });
}

void AppViewModel::applyTemperatureImmediately()
{
    // One on its way will take the newest temperature along; a flood of requests must not queue up 50 ms each.
    if (std::exchange(m_isImmediateApplyPending, true))
        return;
    Task::start(m_ports.executor, [weak = std::weak_ptr(m_self)](TaskContext context) -> Async {
        co_await context.onMain();
        if (const auto self = weak.lock()) {
            self->m_isImmediateApplyPending = false;
            self->m_displayManager->setTemperature(self->m_temperature);
        }
    });
}

bool AppViewModel::scheduleEnabled() const { return m_ports.userDefaults.boolValue(defaults::scheduleEnabled); }

void AppViewModel::setScheduleEnabled(bool enabled)
{
    m_ports.userDefaults.setBool(defaults::scheduleEnabled, enabled);
    if (enabled) {
        checkSchedule();
        setupScheduleTimer();
    } else {
        m_scheduleTimer.cancel();
        m_scheduleTimer = {};
    }
    Q_EMIT changed();
}

void AppViewModel::handleManualChange()
{
    m_isScheduledChange = false;
    setScheduleEnabled(false);
}

bool AppViewModel::acceptsRequest(double temperature) { return isInRange(roundedToStep(temperature)); }

void AppViewModel::requestTemperature(double temperature)
{
    if (!acceptsRequest(temperature))
        return;
    m_isScheduledChange = false;
    setScheduleEnabled(false);
    setTemperature(temperature);
    applyTemperatureImmediately();
}

void AppViewModel::setupScheduleTimer()
{
    m_scheduleTimer.cancel();
    m_scheduleTimer = {};
    if (!scheduleEnabled())
        return;
    m_scheduleTimer = Task::start(m_ports.executor, [weak = std::weak_ptr(m_self)](TaskContext context) -> Async {
        while (!context.isCancelled()) {
            co_await context.sleep(60s);
            co_await context.onMain();
            if (const auto self = weak.lock(); self && !context.isCancelled())
                self->checkSchedule();
        }
    });
    checkSchedule(); // the timer's first firing
    checkSchedule();
}

void AppViewModel::checkSchedule()
{
    Task::start(m_ports.executor,
                [weak = std::weak_ptr(m_self), &userDefaults = m_ports.userDefaults,
                 &calendar = m_ports.calendar](TaskContext context) -> Async {
                    if (weak.expired())
                        co_return;
                    const auto target = scheduledTemperature(userDefaults, calendar);
                    if (!target)
                        co_return;
                    co_await context.onMain();
                    if (const auto self = weak.lock())
                        self->applyScheduledTemperature(*target);
                });
}

void AppViewModel::applyScheduledTemperature(double target)
{
    // A change by hand since the check began has switched the schedule off, and must stand.
    if (m_temperature == target || !scheduleEnabled())
        return;
    m_isScheduledChange = true;
    Q_EMIT changed();
    setTemperature(target);
    applyTemperatureImmediately();
}

void AppViewModel::manualScheduleCheck()
{
    // The running timer tells what the flag was when it was last acted on; another program may have changed it since.
    const bool isEnabled = scheduleEnabled();
    if (isEnabled != static_cast<bool>(m_scheduleTimer))
        setScheduleEnabled(isEnabled);
    if (isEnabled)
        checkSchedule();
}

void AppViewModel::handleTemperatureUpdate(const Notification &notification)
{
    const auto requested = notifications::anyTemperature(notification);
    const double target = requested ? *requested : m_ports.userDefaults.doubleValue(defaults::temperature);
    if (!acceptsRequest(target))
        return;
    Task::startOnMain(m_ports.executor, [weak = std::weak_ptr(m_self), target](TaskContext) -> Async {
        if (const auto self = weak.lock())
            self->requestTemperature(target);
        co_return;
    });
}

void AppViewModel::handleTemperatureRequest()
{
    // The schedule may have set anything that a double holds.
    const auto kelvin = static_cast<std::int64_t>(std::clamp(m_temperature, -1e18, 1e18));
    m_ports.distributedNotifications.post(notifications::withTemperature(notifications::temperatureResponse, kelvin),
                                          Delivery::immediate);
}

} // namespace ambertide
