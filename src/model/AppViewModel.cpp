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

/// Also false for NaN.
bool isInRange(double temperature)
{
    return temperature >= AppViewModel::minTemperature && temperature <= AppViewModel::maxTemperature;
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
        // A file that cannot be read may become readable, and then what it holds counts.
        if (!m_ports.userDefaults.unusableFile())
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
    m_isApplyDelayed = true;
    m_temperatureChangeTask.cancel();
    m_temperatureChangeTask =
        Task::start(m_ports.executor, [weak = std::weak_ptr(m_self)](TaskContext context) -> Async {
            co_await context.sleep(150ms);
            co_await context.onMain();
            if (const auto self = weak.lock()) {
                self->m_isApplyDelayed = false;
                self->m_displayManager->setTemperature(self->m_temperature);
            }
        });
}

void AppViewModel::applyTemperatureImmediately()
{
    // A pending apply takes the newest temperature when it runs. They must not queue up, since each blocks for 50 ms.
    if (std::exchange(m_isImmediateApplyPending, true))
        return;
    Task::startOnMain(m_ports.executor, [weak = std::weak_ptr(m_self)](TaskContext) -> Async {
        if (const auto self = weak.lock()) {
            self->m_isImmediateApplyPending = false;
            self->m_displayManager->setTemperature(self->m_temperature);
        }
        co_return;
    });
}

bool AppViewModel::scheduleEnabled() const { return m_ports.userDefaults.boolValue(defaults::scheduleEnabled); }

void AppViewModel::setScheduleEnabled(bool enabled)
{
    // If another writer has stored the flag, the timer does not follow it yet.
    const bool isStored = scheduleEnabled() == enabled;
    const bool isFollowed = isScheduleFollowed() == enabled;
    if (!isStored)
        m_ports.userDefaults.setBool(defaults::scheduleEnabled, enabled);
    if (enabled) {
        checkSchedule();
        setupScheduleTimer();
    } else {
        m_scheduleTimer.cancel();
        m_scheduleTimer = {};
    }
    if (!isStored || !isFollowed)
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
    handleManualChange();
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
    Task::startOnMain(m_ports.executor, [weak = std::weak_ptr(m_self)](TaskContext) -> Async {
        const auto self = weak.lock();
        if (!self || !self->scheduleEnabled())
            co_return;
        const auto &calendar = self->m_ports.calendar;
        const auto now = calendar.timeOfDay(calendar.now());
        if (auto entries = self->loadScheduleEntries())
            self->applyScheduleEntries(std::move(*entries), now);
    });
}

std::optional<std::vector<ScheduleEntry>> AppViewModel::loadScheduleEntries() const
{
    const auto stored = m_ports.userDefaults.data(defaults::scheduleEntries);
    return stored ? decodeSchedule(*stored).entries : std::nullopt;
}

void AppViewModel::applyScheduleEntries(std::vector<ScheduleEntry> entries, const DateComponents &currentComponents)
{
    const auto entry = entryInForce(std::move(entries), currentComponents, m_ports.calendar);
    if (!entry)
        return;
    const double target = roundedToStep(entry->temperature);
    if (m_temperature == target || !std::isfinite(target))
        return;
    m_isScheduledChange = true;
    setTemperature(target);
    applyTemperatureImmediately();
}

bool AppViewModel::isAnythingScheduled() const
{
    const auto entries = loadScheduleEntries();
    return entries && std::ranges::any_of(*entries, &ScheduleEntry::isEnabled);
}

void AppViewModel::manualScheduleCheck()
{
    const bool isRefused = tintRefusal().has_value();
    if (std::exchange(m_isRefused, isRefused) != isRefused)
        Q_EMIT changed();
    const bool isEnabled = scheduleEnabled();
    if (isEnabled != isScheduleFollowed())
        setScheduleEnabled(isEnabled);
    if (isEnabled)
        checkSchedule();
    // The display manager drops a request that comes during a ramp and is close to the ramp's start.
    if (!m_isApplyDelayed && !m_displayManager->isShowing(m_temperature))
        applyTemperatureImmediately();
}

void AppViewModel::handleTemperatureUpdate(const Notification &notification)
{
    const auto requested = notifications::anyTemperature(notification);
    const double target = requested ? *requested : m_ports.userDefaults.doubleValue(defaults::temperature);
    // A pending task takes the newest request when it runs, so one is enough.
    if (!acceptsRequest(target) || std::exchange(m_requested, target))
        return;
    Task::startOnMain(m_ports.executor, [weak = std::weak_ptr(m_self)](TaskContext) -> Async {
        if (const auto self = weak.lock())
            self->requestTemperature(*std::exchange(self->m_requested, std::nullopt));
        co_return;
    });
}

void AppViewModel::handleTemperatureRequest()
{
    // Whoever has just set a temperature is told that one, even if its task has not run yet. One from the schedule is
    // not checked for its range.
    const double temperature = m_requested ? roundedToStep(*m_requested) : m_temperature;
    const auto kelvin = static_cast<std::int64_t>(std::clamp(temperature, -1e18, 1e18));
    auto response = notifications::withTemperature(notifications::temperatureResponse, kelvin);
    if (const auto refusal = tintRefusal())
        response.userInfo->emplace(notifications::refusalKey, refusal->details);
    m_ports.distributedNotifications.post(response, Delivery::immediate);
}

} // namespace ambertide
