#pragma once

#include "update/UpdateService.h"

#include <QDialog>

#include <functional>

namespace ambertide {

class UpdatePage;

/// The window of one session, from the check to the installed update. Closing it cancels the session, or puts the
/// update off.
class UpdateWindow final : public QDialog
{
    Q_OBJECT

public:
    /// Shows itself after a moment, with the state that the session has reached by then. `session` must outlive it.
    /// `relaunch` replaces this process with the new version.
    UpdateWindow(UpdateSession &session, std::function<void()> relaunch);

    void bringForward();
    void reject() override;

protected:
    bool event(QEvent *event) override;

private:
    void showState();
    void fit();
    UpdatePage *pageForState();
    UpdatePage *busyPage(const QString &heading);
    UpdatePage *checkingPage();
    UpdatePage *upToDatePage();
    UpdatePage *foundPage();
    UpdatePage *downloadingPage();
    UpdatePage *readyPage();
    UpdatePage *installedPage();
    UpdatePage *failedPage();

    UpdateSession &m_session;
    std::function<void()> m_relaunch;
    UpdatePage *m_page = nullptr;
};

} // namespace ambertide
