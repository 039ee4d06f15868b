#pragma once

#include "base/Task.h"
#include "ports/Calendar.h"
#include "ports/UpdaterController.h"
#include "update/UpdateSession.h"

#include <functional>
#include <memory>

namespace ambertide {

/// Creates the windows for a session, which outlives them, and shows them.
using UpdateViewFactory = std::function<std::unique_ptr<QObject>(UpdateSession &)>;

/// Implements UpdaterController over a signed appcast feed. Runs at most one session at a time, for all controllers of
/// this process: closing the Settings window must not end a download that was begun there. Main thread.
class UpdateService final
{
public:
    /// Everything passed by reference must outlive the service.
    UpdateService(UpdateConfiguration configuration, UserDefaults &defaults, const Calendar &calendar,
                  TaskExecutor &executor, UpdateInstaller &installer, UpdateViewFactory createView);
    ~UpdateService();
    UpdateService(const UpdateService &) = delete;
    UpdateService &operator=(const UpdateService &) = delete;

    /// The service must outlive the controller.
    std::unique_ptr<UpdaterController> createController();
    void check(UpdateSession::Origin origin);

private:
    class Controller;

    bool canCheck() const { return m_configuration.isComplete(); }
    double secondsUntilCheck(double interval) const;
    Async checkWhenDue(TaskContext context, double interval);
    void follow();
    void release();

    const UpdateConfiguration m_configuration;
    const Calendar &m_calendar;
    TaskExecutor &m_executor;
    UpdateInstaller &m_installer;
    UpdateViewFactory m_createView;
    UserDefaults &m_defaults; ///< holds the time of the last check
    double m_interval = 0;    ///< seconds between automatic checks, as last asked for
    std::unique_ptr<UpdateSession> m_session;
    std::unique_ptr<QObject> m_view;
    QObject m_context; ///< receives the calls from the session and the event loop, and is destroyed first
};

} // namespace ambertide
