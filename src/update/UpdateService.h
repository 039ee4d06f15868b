#pragma once

#include "ports/Calendar.h"
#include "update/UpdateSession.h"

#include <functional>
#include <memory>

namespace ambertide {

/// The windows of one session.
class UpdateView
{
public:
    virtual ~UpdateView() = default;

    virtual void bringForward() = 0;
};

/// Creates the windows for a session, which outlives them, and shows them.
using UpdateViewFactory = std::function<std::unique_ptr<UpdateView>(UpdateSession &)>;

/// Runs at most one session at a time, for all controllers of this process: closing the Settings window must not end a
/// download that was begun there. Main thread.
class UpdateService final
{
public:
    /// All that is passed by reference must outlive the service.
    UpdateService(UpdateConfiguration configuration, UserDefaults &defaults, const Calendar &calendar,
                  UpdateInstaller &installer, UpdateViewFactory createView);
    ~UpdateService();
    UpdateService(const UpdateService &) = delete;
    UpdateService &operator=(const UpdateService &) = delete;

    bool canCheck() const { return !m_configuration.problem(); }
    void check(UpdateSession::Origin origin);
    /// 0 when an automatic check is due.
    double secondsUntilAutomaticCheck(double interval) const;

private:
    void follow();
    void release();

    const UpdateConfiguration m_configuration;
    const Calendar &m_calendar;
    UpdateInstaller &m_installer;
    UpdateViewFactory m_createView;
    UpdateRecord m_record;
    std::unique_ptr<UpdateSession> m_session;
    std::unique_ptr<UpdateView> m_view;
    QObject m_context; ///< of the calls that come back from the session and the event loop
};

} // namespace ambertide
