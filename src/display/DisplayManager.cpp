#include "display/DisplayManager.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <utility>

namespace ambertide {

using namespace std::chrono_literals;

namespace {

constexpr int rampSteps = 60;
constexpr auto rampInterval = 33'333'333ns;
/// Kelvin: where a ramp that leaves neutral begins.
constexpr double entryTemperature = 5500;

/// Not destroyed at exit: a signal may still come while the process ends.
struct SignalTarget
{
    std::mutex lock;
    std::shared_ptr<DisplayManager> manager;
};
SignalTarget &globalDisplayManagerForSignals()
{
    static auto *target = new SignalTarget;
    return *target;
}

/// Both signals are blocked in every thread but one that holds no lock. So this handler may take locks, once the other
/// signal cannot interrupt it any more. It ends the process without waiting for the reset; others see to it that the
/// displays are given back.
void termSignalHandler(int /*signal*/)
{
    std::signal(SIGTERM, SIG_IGN);
    std::signal(SIGINT, SIG_IGN);
    std::shared_ptr<DisplayManager> manager;
    {
        auto &target = globalDisplayManagerForSignals();
        const std::scoped_lock lock(target.lock);
        manager = target.manager;
    }
    if (manager)
        manager->reset();
    std::_Exit(EXIT_SUCCESS);
}

} // namespace

std::shared_ptr<DisplayManager> DisplayManager::create(DisplayServices &displays, TaskExecutor &executor,
                                                       SystemWake &wake)
{
    auto manager = std::make_shared<DisplayManager>(Private(), displays, executor);
    manager->start(wake);
    return manager;
}

DisplayManager::DisplayManager(Private /*only through create*/, DisplayServices &displays, TaskExecutor &executor)
    : m_displays(displays), m_executor(executor)
{
}

DisplayManager::~DisplayManager()
{
    m_wakeObservation.release();
    m_maintenanceTask.cancel();
}

void DisplayManager::start(SystemWake &wake)
{
    {
        auto previous = shared_from_this();
        auto &target = globalDisplayManagerForSignals();
        const std::scoped_lock lock(target.lock);
        std::swap(target.manager, previous);
    }
    std::signal(SIGTERM, termSignalHandler);
    std::signal(SIGINT, termSignalHandler);
    m_wakeObservation = wake.observe([weak = weak_from_this()] {
        if (const auto manager = weak.lock())
            manager->handleWakeNotification();
    });
    startMaintenanceTask();
}

bool DisplayManager::isShowing(double temperature)
{
    const std::scoped_lock lock(m_transitionLock);
    return m_target == std::clamp(temperature, minTemperature, maxTemperature);
}

void DisplayManager::setTemperature(double temperature)
{
    if (std::isnan(temperature))
        return;
    const double target = std::clamp(temperature, minTemperature, maxTemperature);
    double from = 0;
    {
        const std::scoped_lock lock(m_transitionLock);
        if (m_isTransitioning && std::abs(target - m_temperature) < 100.0)
            return;
        m_transitionTask.cancel();
        m_target = target;
        m_isTransitioning = false;
        m_executor.blockThread(50ms); // gives the cancelled ramp a moment to stop
        from = m_currentTransitionTemp;
        m_isTransitioning = true;
    }
    m_transitionTask.store(Task::start(m_executor, [self = shared_from_this(), from, target](TaskContext context) {
        return self->transition(context, from, target);
    }));
}

void DisplayManager::reapplyCurrentTemperature()
{
    if (const double temperature = m_temperature; temperature < neutralTemperature)
        applyColorTemperature(temperature);
}

void DisplayManager::reset()
{
    m_transitionTask.cancel();
    {
        const std::scoped_lock lock(m_transitionLock);
        m_target = neutralTemperature;
    }
    m_transitionTask.store(Task::start(m_executor, [self = shared_from_this()](TaskContext context) -> Async {
        self->restoreSystemColours();
        if (context.isCancelled())
            co_return;
        self->m_temperature = neutralTemperature;
        self->startMaintenanceTask();
    }));
}

void DisplayManager::handleWakeNotification() { reapplyCurrentTemperature(); }

void DisplayManager::applyColorTemperature(double temperature)
{
    const auto tables = createGammaTables(temperature);
    const auto displays = m_displays.activeDisplays();
    m_displays.setTransferTables(displays, tables);
}

void DisplayManager::restoreSystemColours()
{
    // The active displays are listed first, as before every write, although the restore itself takes no list.
    m_displays.activeDisplays();
    m_displays.restoreSystemColours();
}

void DisplayManager::announceRamp(double to)
{
    m_displays.beginRamp(to < neutralTemperature ? std::optional(createGammaTables(to)) : std::nullopt);
}

void DisplayManager::publish(double temperature)
{
    const std::scoped_lock lock(m_transitionLock);
    m_currentTransitionTemp = temperature;
}

Async DisplayManager::transition(TaskContext context, double from, double to)
{
    try {
        co_await smoothTransition(context, from, to);
    } catch (const CancellationError &) {
        const std::scoped_lock lock(m_transitionLock);
        m_isTransitioning = false;
        co_return;
    }
    // A ramp that was cancelled after its last check changes nothing more, not even m_isTransitioning.
    if (context.isCancelled())
        co_return;
    {
        const std::scoped_lock lock(m_transitionLock);
        m_temperature = to;
        m_currentTransitionTemp = to;
        m_isTransitioning = false;
    }
    if (to < neutralTemperature)
        applyColorTemperature(to);
}

Async DisplayManager::smoothTransition(TaskContext context, double from, double to)
{
    double shown = from;
    if (from >= neutralTemperature && to < neutralTemperature) {
        co_await leaveNeutral(context, to);
        shown = entryTemperature;
    } else {
        announceRamp(to);
    }

    const double step = (to - shown) / rampSteps;
    auto next = m_executor.now(); // when each step is due is counted from here, so a late one does not delay the rest
    for (int i = 0; i < rampSteps; ++i) {
        context.throwIfCancelled();
        shown = std::clamp(shown + step, minTemperature, maxTemperature);
        publish(shown);
        applyColorTemperature(shown);
        next += rampInterval;
        co_await context.sleep(next - m_executor.now());
    }

    context.throwIfCancelled();
    if (to >= neutralTemperature) {
        m_temperature = neutralTemperature; // so that a wake in the middle of the restore does not tint again
        restoreSystemColours();
        publish(neutralTemperature);
    } else {
        publish(to);
        applyColorTemperature(to);
    }
}

Async DisplayManager::leaveNeutral(TaskContext context, double to)
{
    restoreSystemColours();
    announceRamp(to);
    co_await context.sleep(500ms);
    context.throwIfCancelled();
    applyColorTemperature(entryTemperature);
    publish(entryTemperature);
    co_await context.sleep(200ms);
}

void DisplayManager::startMaintenanceTask()
{
    m_maintenanceTask.cancel();
    m_maintenanceTask.store(Task::start(m_executor, [self = shared_from_this()](TaskContext context) -> Async {
        while (!context.isCancelled()) {
            self->reapplyCurrentTemperature();
            co_await context.sleep(2s);
        }
    }));
}

} // namespace ambertide
