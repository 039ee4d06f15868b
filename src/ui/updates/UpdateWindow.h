#pragma once

#include "update/UpdateService.h"

#include <QDialog>

#include <functional>

namespace ambertide {

class UpdatePage;

/// The window of one session, from the check to the installed update. Closing it cancels or puts off what can be.
class UpdateWindow final : public QDialog
{
    Q_OBJECT

public:
    /// Shows itself after a moment, as far as the session has come by then. `session` must outlive it. `relaunch`
    /// starts the new version in the place of this one.
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
