#include "update/UpdateService.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace ambertide {

namespace {

// A sleep does not count the time that the machine is suspended, hence the look at the clock once an hour.
constexpr std::chrono::duration<double> longestSleep = std::chrono::hours(1);
constexpr std::chrono::duration<double> shortestSleep = std::chrono::minutes(1);

} // namespace

/// What one owner of a controller has set.
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
        if (m_isAutomatic && canCheckForUpdates())
            m_schedule = Task::startOnMain(m_service.m_executor, [this](TaskContext context) {
                return m_service.checkWhenDue(context, m_interval);
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
      m_createView(std::move(createView)), m_record(defaults)
{
}

UpdateService::~UpdateService() = default;

std::unique_ptr<UpdaterController> UpdateService::createController() { return std::make_unique<Controller>(*this); }

void UpdateService::check(UpdateSession::Origin origin)
{
    const bool isManual = origin == UpdateSession::Origin::Manual;
    if (m_session && m_session->state() != UpdateSession::State::Ended) {
        if (isManual)
            m_session->makeManual();
        if (isManual && m_view)
            m_view->bringForward();
        return;
    }
    release();
    // Recorded first, so that a check that fails counts too and a second controller sees it at once.
    m_record.setLastCheck(m_calendar.now());
    m_session = std::make_unique<UpdateSession>(m_configuration, m_record, m_installer, origin);
    QObject::connect(m_session.get(), &UpdateSession::stateChanged, &m_context, [this] { follow(); });
    m_session->start();
}

Async UpdateService::checkWhenDue(TaskContext context, double interval)
{
    for (;;) {
        context.throwIfCancelled();
        if (m_record.secondsUntilCheck(m_calendar.now(), interval) <= 0)
            check(UpdateSession::Origin::Automatic);
        const std::chrono::duration<double> wait(m_record.secondsUntilCheck(m_calendar.now(), interval));
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
    // The end comes out of a call by the session or its window, so they go when that call has returned.
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
