#pragma once

#include "base/Task.h"
#include "ports/UpdaterController.h"
#include "update/UpdateService.h"

namespace ambertide {

/// The standard updater controller over a signed appcast feed. Main thread.
class AppcastUpdaterController final : public UpdaterController
{
public:
    /// Both must outlive it.
    AppcastUpdaterController(UpdateService &service, TaskExecutor &executor);
    ~AppcastUpdaterController() override;

    void setAutomaticallyChecksForUpdates(bool isOn) override;
    void setUpdateCheckInterval(double seconds) override;
    void checkForUpdates() override { m_service.check(UpdateSession::Origin::Manual); }
    bool canCheckForUpdates() const override { return m_service.canCheck(); }

private:
    void schedule();
    Async checkWhenDue(TaskContext context);

    UpdateService &m_service;
    TaskExecutor &m_executor;
    bool m_isAutomatic = false;
    double m_interval = 86400; ///< seconds
    Task m_schedule;
};

} // namespace ambertide
