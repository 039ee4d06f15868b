#include "update/AppcastUpdaterController.h"

#include <algorithm>
#include <chrono>

namespace ambertide {

namespace {

// A sleep does not count the time that the machine is suspended, hence the look at the clock once an hour.
constexpr std::chrono::duration<double> longestSleep = std::chrono::hours(1);
constexpr std::chrono::duration<double> shortestSleep = std::chrono::minutes(1);

} // namespace

AppcastUpdaterController::AppcastUpdaterController(UpdateService &service, TaskExecutor &executor)
    : m_service(service), m_executor(executor)
{
}

AppcastUpdaterController::~AppcastUpdaterController() { m_schedule.cancel(); }

void AppcastUpdaterController::setAutomaticallyChecksForUpdates(bool isOn)
{
    m_isAutomatic = isOn;
    schedule();
}

void AppcastUpdaterController::setUpdateCheckInterval(double seconds)
{
    m_interval = seconds;
    schedule();
}

void AppcastUpdaterController::schedule()
{
    m_schedule.cancel();
    m_schedule = {};
    if (m_isAutomatic && m_service.canCheck())
        m_schedule = Task::startOnMain(m_executor, [this](TaskContext context) { return checkWhenDue(context); });
}

Async AppcastUpdaterController::checkWhenDue(TaskContext context)
{
    for (;;) {
        context.throwIfCancelled();
        if (m_service.secondsUntilAutomaticCheck(m_interval) <= 0)
            m_service.check(UpdateSession::Origin::Automatic);
        const std::chrono::duration<double> wait(m_service.secondsUntilAutomaticCheck(m_interval));
        const auto sleep = std::clamp(wait, shortestSleep, longestSleep);
        co_await context.sleep(std::chrono::duration_cast<std::chrono::nanoseconds>(sleep));
        co_await context.onMain();
    }
}

} // namespace ambertide
