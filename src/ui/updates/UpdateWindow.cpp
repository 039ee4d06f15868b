#include "ui/updates/UpdateWindow.h"

#include "ui/controls/Button.h"
#include "ui/controls/Card.h"
#include "ui/controls/Page.h"
#include "ui/controls/ProgressBar.h"
#include "ui/controls/TextLabel.h"
#include "ui/updates/ReleaseNotesView.h"
#include "ui/updates/UpdateFailureText.h"
#include "ui/updates/UpdatePage.h"

#include <QEvent>
#include <QLocale>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>
#include <chrono>
#include <utility>

namespace ambertide {

using namespace std::chrono_literals;

namespace {

constexpr int usualWidth = 480; // logical pixels
constexpr auto timeToAnswer = 200ms;
constexpr int progressSteps = 1000;

Card *releaseNotesCard(const UpdateSession &session)
{
    constexpr int inset = 3; // keeps square corners inside the round ones
    auto *notes = new ReleaseNotesView;
    notes->setNotes(session.releaseNotes());
    QObject::connect(&session, &UpdateSession::releaseNotesChanged, notes,
                     [&session, notes] { notes->setNotes(session.releaseNotes()); });
    auto *card = new Card;
    card->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    card->layout()->setContentsMargins(inset, inset, inset, inset);
    card->addRow(notes);
    return card;
}
} // namespace

UpdateWindow::UpdateWindow(UpdateSession &session, std::function<void()> relaunch)
    : m_session(session), m_relaunch(std::move(relaunch))
{
    setWindowTitle(tr("Software Update"));
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSizeConstraint(QLayout::SetNoConstraint);
    connect(&m_session, &UpdateSession::stateChanged, this, &UpdateWindow::showState);
    connect(&m_session, &UpdateSession::askedAgain, this, &UpdateWindow::bringForward);
    showState();
    // Shown only then, so that a quick answer is the first thing it shows, and because a window that changes its size
    // before the window manager has placed it would end up in the screen's corner.
    QTimer::singleShot(timeToAnswer, this, [this] {
        if (m_session.state() != UpdateSession::State::Ended)
            show();
    });
}

void UpdateWindow::bringForward()
{
    if (isMinimized())
        showNormal();
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
        // Deleted later, since this may run inside a signal of one of the old page's buttons.
        layout()->removeWidget(m_page);
        m_page->hide();
        m_page->deleteLater();
    }
    m_page = page;
    layout()->addWidget(m_page);
    m_page->show();
    m_page->takeFocus();
    fit();
    resize(minimumSize());
}

void UpdateWindow::fit()
{
    const QSize room = roomOnScreen(*this).size();
    const int wanted = std::max(qRound(usualWidth * textScale()), layout()->minimumSize().width());
    const int width = std::min(wanted, room.width());
    // A layout's minimum height does not include the further lines of wrapped sentences.
    setMinimumSize(width, std::min(layout()->totalHeightForWidth(width), room.height()));
}

bool UpdateWindow::event(QEvent *event)
{
    const bool isHandled = QDialog::event(event);
    if (event->type() == QEvent::LayoutRequest && m_page != nullptr)
        fit();
    return isHandled;
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
        return busyPage(tr("Installing the update\u2026"));
    case UpdateSession::State::Installed:
        return installedPage();
    case UpdateSession::State::Failed:
    case UpdateSession::State::Ended:
        break;
    }
    return failedPage();
}

UpdatePage *UpdateWindow::busyPage(const QString &heading)
{
    auto *page = new UpdatePage(heading, {}, this);
    page->addUnderTexts(new ProgressBar(page->accessibleName()));
    return page;
}

UpdatePage *UpdateWindow::checkingPage()
{
    auto *page = busyPage(tr("Checking for updates\u2026"));
    connect(page->addButton(tr("Cancel")), &Button::clicked, &m_session, &UpdateSession::end);
    return page;
}

UpdatePage *UpdateWindow::upToDatePage()
{
    auto *page = new UpdatePage(
        tr("You're up to date!"),
        tr("Ambertide %1 is the newest version available.").arg(m_session.running().displayVersion), this);
    connect(page->addDefaultButton(tr("OK")), &Button::clicked, &m_session, &UpdateSession::end);
    return page;
}

UpdatePage *UpdateWindow::foundPage()
{
    auto *page = new UpdatePage(m_session.isCritical() ? tr("An important update of Ambertide is available!")
                                                       : tr("A new version of Ambertide is available!"),
                                tr("Ambertide %1 is now available. You have %2.")
                                    .arg(m_session.item().displayVersion, m_session.running().displayVersion),
                                this);
    page->addAcross(releaseNotesCard(m_session));
    if (!m_session.isCritical())
        connect(page->addButton(tr("Skip This Version"), UpdatePage::Place::Aside), &Button::clicked, &m_session,
                &UpdateSession::skip);
    connect(page->addButton(tr("Remind Me Later")), &Button::clicked, &m_session, &UpdateSession::end);
    connect(page->addDefaultButton(tr("Install Update")), &Button::clicked, &m_session, &UpdateSession::download);
    return page;
}

UpdatePage *UpdateWindow::downloadingPage()
{
    auto *page = new UpdatePage(tr("Downloading the update\u2026"), {}, this);
    auto *bar = new ProgressBar(page->accessibleName());
    // A space keeps the line's height until there is something to show.
    auto *amount = new TextLabel(QStringLiteral(" "), TextStyle::Subheadline, &Theme::secondaryText);
    connect(&m_session, &UpdateSession::progressed, bar, [bar, amount](qint64 received, qint64 expected) {
        const QLocale locale;
        const auto size = [&](qint64 bytes) { return locale.formattedDataSize(bytes, 1, QLocale::DataSizeSIFormat); };
        if (expected <= 0)
            return amount->setText(size(received));
        bar->setRange(0, progressSteps);
        bar->setValue(static_cast<int>(progressSteps * received / expected));
        //: How much has been downloaded, and how much there is; each with its unit.
        amount->setText(tr("%1 of %2").arg(size(received), size(expected)));
    });
    page->addUnderTexts(bar);
    page->addUnderTexts(amount);
    connect(page->addButton(tr("Cancel")), &Button::clicked, &m_session, &UpdateSession::end);
    return page;
}

UpdatePage *UpdateWindow::readyPage()
{
    auto *page = new UpdatePage(tr("Ready to install"),
                                tr("Ambertide %1 has been downloaded and verified. Installing it takes an "
                                   "administrator's password.")
                                    .arg(m_session.item().displayVersion),
                                this);
    connect(page->addButton(tr("Not Now")), &Button::clicked, &m_session, &UpdateSession::end);
    auto *install = page->addDefaultButton(tr("Install"));
    connect(install, &Button::clicked, &m_session, &UpdateSession::install);
    return page;
}

UpdatePage *UpdateWindow::installedPage()
{
    auto *page = new UpdatePage(tr("Ambertide %1 is installed").arg(m_session.item().displayVersion),
                                tr("Restart Ambertide to use it."), this);
    connect(page->addButton(tr("Later")), &Button::clicked, &m_session, &UpdateSession::end);
    auto *restart = page->addDefaultButton(tr("Restart Ambertide"));
    connect(restart, &Button::clicked, &m_session, [this] {
        m_session.end();
        m_relaunch();
    });
    return page;
}

UpdatePage *UpdateWindow::failedPage()
{
    const bool isFound = !m_session.item().version.isEmpty();
    auto *page = new UpdatePage(isFound ? tr("The update did not succeed") : tr("Could not check for updates"),
                                describeForPeople(m_session.failure()), this);
    if (m_session.failure().kind != UpdateFailure::Kind::NotConfigured)
        connect(page->addButton(tr("Try Again")), &Button::clicked, &m_session, &UpdateSession::start);
    connect(page->addDefaultButton(tr("OK")), &Button::clicked, &m_session, &UpdateSession::end);
    return page;
}

} // namespace ambertide
