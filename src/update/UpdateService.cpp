#include "update/UpdateService.h"

#include <algorithm>
#include <chrono>
#include <string_view>
#include <utility>

namespace ambertide {

namespace {

constexpr std::string_view lastCheckKey = "SULastCheckTime"; // seconds since the reference date
constexpr double shortestInterval = 3600;                    // seconds

// A sleep does not count the time that the machine is suspended, so the clock is looked at once an hour.
constexpr std::chrono::duration<double> longestSleep = std::chrono::hours(1);
constexpr std::chrono::duration<double> shortestSleep = std::chrono::minutes(1);

} // namespace

/// Holds what its owner has set, and runs the automatic checks that this asks for.
class UpdateService::Controller final : public UpdaterController
{
public:
    explicit Controller(UpdateService &service) : m_service(service) {}
    ~Controller() override { m_schedule.cancel(); }

    void setAutomaticallyChecksForUpdates(bool isOn) override
    {
        m_isAutomatic = isOn;
        schedule();
    }
    void setUpdateCheckInterval(double seconds) override
    {
        m_interval = seconds;
        schedule();
    }
    void checkForUpdates() override { m_service.check(UpdateSession::Origin::Manual); }
    bool canCheckForUpdates() const override { return m_service.canCheck(); }

private:
    void schedule()
    {
        m_schedule.cancel();
        m_schedule = {};
        // A task that was cancelled before its start begins all the same, and this may be gone by then.
        if (m_isAutomatic && canCheckForUpdates())
            m_schedule = Task::startOnMain(m_service.m_executor,
                                           [&service = m_service, interval = m_interval](TaskContext context) {
                                               return service.checkWhenDue(context, interval);
                                           });
    }

    UpdateService &m_service;
    bool m_isAutomatic = false;
    double m_interval = 86400; ///< seconds
    Task m_schedule;
};

UpdateService::UpdateService(UpdateConfiguration configuration, UserDefaults &defaults, const Calendar &calendar,
                             TaskExecutor &executor, UpdateInstaller &installer, UpdateViewFactory createView)
    : m_configuration(std::move(configuration)), m_calendar(calendar), m_executor(executor), m_installer(installer),
      m_createView(std::move(createView)), m_defaults(defaults)
{
}

UpdateService::~UpdateService() = default;

std::unique_ptr<UpdaterController> UpdateService::createController() { return std::make_unique<Controller>(*this); }

void UpdateService::check(UpdateSession::Origin origin)
{
    if (m_session && m_session->state() != UpdateSession::State::Ended) {
        if (origin == UpdateSession::Origin::Manual)
            m_session->makeManual();
        return;
    }
    release();
    // Recorded first, so that a check that fails counts, too, and a second controller sees it at once.
    m_defaults.setDouble(lastCheckKey, m_calendar.now().secondsSinceReference);
    m_session = std::make_unique<UpdateSession>(m_configuration, m_defaults, m_calendar, m_installer, origin);
    QObject::connect(m_session.get(), &UpdateSession::stateChanged, &m_context, [this] { follow(); });
    m_session->start();
}

/// 0 when a check is due, which it also is when there has been none yet or the last one lies in the future.
double UpdateService::secondsUntilCheck(double interval) const
{
    if (!m_defaults.hasObject(lastCheckKey))
        return 0;
    const double elapsed = m_calendar.now().secondsSinceReference - m_defaults.doubleValue(lastCheckKey);
    // Written so that NaN counts as too short.
    const double wanted = interval > shortestInterval ? interval : shortestInterval;
    return elapsed >= 0 && elapsed < wanted ? wanted - elapsed : 0;
}

Async UpdateService::checkWhenDue(TaskContext context, double interval)
{
    for (;;) {
        context.throwIfCancelled();
        m_interval = interval;
        if (secondsUntilCheck(interval) <= 0)
            check(UpdateSession::Origin::Automatic);
        const std::chrono::duration<double> wait(secondsUntilCheck(interval));
        const auto sleep = std::clamp(wait, shortestSleep, longestSleep);
        co_await context.sleep(std::chrono::duration_cast<std::chrono::nanoseconds>(sleep));
        co_await context.onMain();
    }
}

void UpdateService::follow()
{
    if (!m_view && m_session->isWorthShowing())
        m_view = m_createView(*m_session);
    if (m_session->state() != UpdateSession::State::Ended)
        return;
    if (m_session->hasMissedServer()) // as at a login, before the network is there: an hour later it may be
        m_defaults.setDouble(lastCheckKey, m_calendar.now().secondsSinceReference -
                                               std::max(m_interval, shortestInterval) + shortestInterval);
    // This runs inside a call by the session or its window, so they are destroyed when that has returned.
    QMetaObject::invokeMethod(
        &m_context,
        [this] {
            if (m_session && m_session->state() == UpdateSession::State::Ended)
                release();
        },
        Qt::QueuedConnection);
}

void UpdateService::release()
{
    m_view.reset();
    m_session.reset();
}

} // namespace ambertide
