#include "update/ui/UpdateWindow.h"

#include "update/ui/UpdateFailureText.h"
#include "update/ui/UpdatePage.h"

#include <QDesktopServices>
#include <QLocale>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include <utility>

namespace ambertide {

namespace {

constexpr int windowWidth = 480;
constexpr int notesHeight = 220;
constexpr int progressSteps = 1000;

} // namespace

UpdateWindow::UpdateWindow(UpdateSession &session, std::function<void()> relaunch)
    : m_session(session), m_relaunch(std::move(relaunch))
{
    setWindowTitle(tr("Software Update"));
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSizeConstraint(QLayout::SetNoConstraint);
    setMinimumWidth(windowWidth);
    connect(&m_session, &UpdateSession::stateChanged, this, &UpdateWindow::showState);
    showState();
    show();
}

void UpdateWindow::bringForward()
{
    show();
    raise();
    activateWindow();
}

void UpdateWindow::reject() { m_session.end(); }

void UpdateWindow::showState()
{
    if (m_session.state() == UpdateSession::State::Ended)
        return hide();
    auto *page = pageForState();
    if (m_page != nullptr) {
        // The change may come out of one of the old page's buttons.
        layout()->removeWidget(m_page);
        m_page->hide();
        m_page->deleteLater();
    }
    m_page = page;
    layout()->addWidget(m_page);
    m_page->show();
    // A minimum size does not take in the lines of a wrapped sentence.
    const int height = layout()->totalHeightForWidth(windowWidth);
    setMinimumHeight(height);
    resize(windowWidth, height);
}

UpdatePage *UpdateWindow::pageForState()
{
    switch (m_session.state()) {
    case UpdateSession::State::Checking:
        return checkingPage();
    case UpdateSession::State::UpToDate:
        return upToDatePage();
    case UpdateSession::State::Found:
        return foundPage();
    case UpdateSession::State::Downloading:
        return downloadingPage();
    case UpdateSession::State::ReadyToInstall:
        return readyPage();
    case UpdateSession::State::Installing:
        return installingPage();
    case UpdateSession::State::Installed:
        return installedPage();
    case UpdateSession::State::Failed:
    case UpdateSession::State::Ended:
        break;
    }
    return failedPage();
}

UpdatePage *UpdateWindow::checkingPage()
{
    auto *page = new UpdatePage(tr("Checking for updates\u2026"), {}, this);
    page->addContent(busyBar());
    connect(page->addButton(tr("Cancel")), &QPushButton::clicked, &m_session, &UpdateSession::end);
    return page;
}

UpdatePage *UpdateWindow::upToDatePage()
{
    auto *page = new UpdatePage(
        tr("You're up to date!"),
        tr("Ambertide %1 is the newest version available.").arg(m_session.running().displayVersion), this);
    auto *close = page->addButton(tr("OK"));
    close->setDefault(true);
    connect(close, &QPushButton::clicked, &m_session, &UpdateSession::end);
    return page;
}

UpdatePage *UpdateWindow::foundPage()
{
    auto *page = new UpdatePage(m_session.isCritical() ? tr("An important update of Ambertide is available!")
                                                       : tr("A new version of Ambertide is available!"),
                                tr("Ambertide %1 is now available. You have %2.")
                                    .arg(m_session.item().displayVersion, m_session.running().displayVersion),
                                this);
    auto *notes = new QPlainTextEdit;
    notes->setReadOnly(true);
    notes->setMinimumHeight(notesHeight);
    notes->setPlaceholderText(tr("There are no release notes."));
    notes->setPlainText(m_session.releaseNotes());
    connect(&m_session, &UpdateSession::releaseNotesChanged, notes,
            [this, notes] { notes->setPlainText(m_session.releaseNotes()); });
    page->addContent(notes);

    if (!m_session.isCritical())
        connect(page->addButton(tr("Skip This Version"), UpdatePage::Place::Aside), &QPushButton::clicked, &m_session,
                &UpdateSession::skip);
    connect(page->addButton(tr("Remind Me Later")), &QPushButton::clicked, &m_session, &UpdateSession::end);
    const bool isInformational = m_session.isInformational();
    auto *install = page->addButton(isInformational ? tr("Learn More\u2026") : tr("Install Update"));
    install->setDefault(true);
    if (isInformational)
        connect(install, &QPushButton::clicked, this, &UpdateWindow::learnMore);
    else
        connect(install, &QPushButton::clicked, &m_session, &UpdateSession::download);
    return page;
}

UpdatePage *UpdateWindow::downloadingPage()
{
    auto *page = new UpdatePage(tr("Downloading the update\u2026"), {}, this);
    auto *bar = busyBar();
    bar->setTextVisible(true);
    connect(&m_session, &UpdateSession::progressed, bar, [this, bar] { showProgress(*bar); });
    page->addContent(bar);
    connect(page->addButton(tr("Cancel")), &QPushButton::clicked, &m_session, &UpdateSession::end);
    return page;
}

UpdatePage *UpdateWindow::readyPage()
{
    auto *page = new UpdatePage(tr("Ready to install"),
                                tr("Ambertide %1 has been downloaded and verified. Installing it takes the password of "
                                   "an administrator.")
                                    .arg(m_session.item().displayVersion),
                                this);
    connect(page->addButton(tr("Not Now")), &QPushButton::clicked, &m_session, &UpdateSession::end);
    auto *install = page->addButton(tr("Install"));
    install->setDefault(true);
    connect(install, &QPushButton::clicked, &m_session, &UpdateSession::install);
    return page;
}

UpdatePage *UpdateWindow::installingPage()
{
    auto *page = new UpdatePage(tr("Installing the update\u2026"), {}, this);
    page->addContent(busyBar());
    return page;
}

UpdatePage *UpdateWindow::installedPage()
{
    auto *page = new UpdatePage(
        tr("Ambertide %1 is installed").arg(m_session.item().displayVersion),
        m_relaunch ? tr("Restart Ambertide to use it.") : tr("Quit and start Ambertide to use it."), this);
    auto *close = page->addButton(m_relaunch ? tr("Later") : tr("OK"));
    connect(close, &QPushButton::clicked, &m_session, &UpdateSession::end);
    if (!m_relaunch) {
        close->setDefault(true);
        return page;
    }
    auto *restart = page->addButton(tr("Restart Ambertide"));
    restart->setDefault(true);
    connect(restart, &QPushButton::clicked, &m_session, [this] {
        m_session.end();
        m_relaunch();
    });
    return page;
}

UpdatePage *UpdateWindow::failedPage()
{
    auto *page = new UpdatePage(tr("The update did not succeed"), describeForPeople(m_session.failure()), this);
    if (m_session.failure().kind != UpdateFailure::Kind::NotConfigured)
        connect(page->addButton(tr("Try Again")), &QPushButton::clicked, &m_session, &UpdateSession::start);
    auto *close = page->addButton(tr("OK"));
    close->setDefault(true);
    connect(close, &QPushButton::clicked, &m_session, &UpdateSession::end);
    return page;
}

QProgressBar *UpdateWindow::busyBar()
{
    auto *bar = new QProgressBar;
    bar->setRange(0, 0);
    bar->setTextVisible(false);
    return bar;
}

void UpdateWindow::showProgress(QProgressBar &bar) const
{
    const QLocale locale;
    const QString received = locale.formattedDataSize(m_session.receivedBytes());
    if (m_session.expectedBytes() <= 0)
        return bar.setFormat(received);
    bar.setRange(0, progressSteps);
    bar.setValue(static_cast<int>(progressSteps * m_session.receivedBytes() / m_session.expectedBytes()));
    bar.setFormat(tr("%1 of %2").arg(received, locale.formattedDataSize(m_session.expectedBytes())));
}

void UpdateWindow::learnMore()
{
    // Only a web page, whatever the feed names: other schemes start other programs.
    const QUrl link = m_session.item().link;
    if (link.scheme() == QLatin1String("https"))
        QDesktopServices::openUrl(link);
    m_session.end();
}

} // namespace ambertide
