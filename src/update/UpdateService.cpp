#include "update/UpdateService.h"

#include <utility>

namespace ambertide {

UpdateService::UpdateService(UpdateConfiguration configuration, UserDefaults &defaults, const Calendar &calendar,
                             UpdateInstaller &installer, UpdateViewFactory createView)
    : m_configuration(std::move(configuration)), m_calendar(calendar), m_installer(installer),
      m_createView(std::move(createView)), m_record(defaults)
{
}

UpdateService::~UpdateService() = default;

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
    if (!isManual && !canCheck())
        return;
    release();
    // Recorded first, so that a check that fails counts too and a second controller sees it at once.
    m_record.setLastCheck(m_calendar.now());
    m_session = std::make_unique<UpdateSession>(m_configuration, m_record, m_installer, origin);
    QObject::connect(m_session.get(), &UpdateSession::stateChanged, &m_context, [this] { follow(); });
    m_session->start();
}

double UpdateService::secondsUntilAutomaticCheck(double interval) const
{
    return m_record.secondsUntilCheck(m_calendar.now(), interval);
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
