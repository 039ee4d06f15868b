#include "ui/settings/SettingsView.h"

#include "ui/controls/Drawing.h"
#include "ui/controls/Page.h"
#include "ui/controls/Sheet.h"
#include "ui/controls/TextLabel.h"
#include "ui/settings/ScheduleSettingsView.h"

#include <QCloseEvent>
#include <QShortcut>
#include <QShowEvent>
#include <QStackedWidget>
#include <QTabBar>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>

namespace ambertide {

namespace {

constexpr int windowWidth = 600;    // logical pixels, as are all below
constexpr int smallestHeight = 324; // enough for a sheet, so that the window need not grow when one opens
constexpr int gapAboveTabs = 12;
constexpr int gapBelowTabs = 10;
constexpr QMargins troubleMargins{20, 0, 20, 14};
constexpr std::chrono::seconds troubleInterval{1}; // it arises on other threads, so it is looked for

} // namespace

SettingsView::SettingsView(AppViewModel &appViewModel, const Ports &ports)
    : m_appViewModel(appViewModel), m_userDefaults(ports.userDefaults),
      m_settingsViewModel(appViewModel, {ports.userDefaults, ports.notifications, ports.calendar, ports.loginItem}),
      m_general(new GeneralSettingsView(m_settingsViewModel, ports)), m_tabs(new QTabBar), m_pages(new QStackedWidget),
      m_trouble(new TextLabel({}, TextStyle::Subheadline, &Theme::orangeText))
{
    setObjectName(QStringLiteral("Settings"));
    setWindowTitle(tr("Ambertide Settings"));
    setAttribute(Qt::WA_DeleteOnClose);
    setAttribute(Qt::WA_QuitOnClose, false);
    m_tabs->setDrawBase(false);
    m_tabs->setExpanding(false);
    m_tabs->setUsesScrollButtons(false);
    m_tabs->setElideMode(Qt::ElideNone);
    m_tabs->setAttribute(Qt::WA_Hover);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, gapAboveTabs, 0, 0);
    column->setSpacing(gapBelowTabs);
    column->addWidget(m_tabs, 0, Qt::AlignHCenter);
    column->addWidget(m_pages, 1);
    column->addWidget(m_trouble);
    m_trouble->setWordWrap(true);
    m_trouble->setAlignment(Qt::AlignHCenter);
    m_trouble->setContentsMargins(troubleMargins);
    auto *troubleTimer = new QTimer(this);
    connect(troubleTimer, &QTimer::timeout, this, &SettingsView::showTrouble);
    troubleTimer->start(troubleInterval);
    showTrouble();

    addTab(symbols::gearshape, tr("General"), m_general);
    addTab(symbols::clock, tr("Schedule"), new ScheduleSettingsView(m_settingsViewModel, ports.calendar));
    connect(m_tabs, &QTabBar::currentChanged, &m_settingsViewModel, &SettingsViewModel::setSelectedTab);
    connect(&m_settingsViewModel, &SettingsViewModel::changed, this, &SettingsView::showSelectedTab);

    connect(m_general, &GeneralSettingsView::processingEnded, this, [this] {
        if (isHidden())
            deleteLater();
    });

    connect(new QShortcut(QKeySequence::Close, this), &QShortcut::activated, this, &SettingsView::close);
    connect(new QShortcut(QKeySequence::Quit, this), &QShortcut::activated, this, &SettingsView::quitRequested);
}

SettingsView::~SettingsView()
{
    // The views have to be destroyed before the model that they show.
    qDeleteAll(findChildren<QWidget *>(Qt::FindDirectChildrenOnly));
}

void SettingsView::addTab(QLatin1String symbol, const QString &title, QWidget *content)
{
    auto *page = new Page(content);
    connect(page, &Page::idealHeightChanged, this, &SettingsView::fit);
    m_pages->addWidget(page);
    m_tabs->setTabData(m_tabs->addTab(title), QVariant::fromValue(symbol)); // the style draws it
}

void SettingsView::showSelectedTab()
{
    const int tab = m_settingsViewModel.selectedTab();
    if (m_pages->currentIndex() == tab)
        return;
    m_tabs->setCurrentIndex(tab);
    m_pages->setCurrentIndex(tab);
    fit();
}

void SettingsView::showTrouble()
{
    QStringList troubles;
    if (const auto file = m_userDefaults.unusableFile())
        troubles += tr("Settings cannot be saved in %1.").arg(QString::fromStdString(*file));
    if (!m_appViewModel.areDisplaysGuarded())
        troubles += tr("If Ambertide is killed, the displays stay tinted: its guardian cannot be started.");
    m_trouble->setText(troubles.join(u'\n'));
    m_trouble->setHidden(troubles.isEmpty());
}

bool SettingsView::event(QEvent *event)
{
    const bool isHandled = QWidget::event(event);
    if (event->type() == QEvent::LayoutRequest)
        fit();
    return isHandled;
}

void SettingsView::showEvent(QShowEvent *event)
{
    if (event->spontaneous())
        return;
    m_settingsViewModel.setSelectedTab(0);
    fit();
    raise();
    activateWindow();
}

void SettingsView::closeEvent(QCloseEvent *event)
{
    if (!m_general->isProcessing())
        return;
    // A new window would not know that an installation is under way, and could start another.
    hide();
    event->ignore();
}

// The size of the frame is known only when the window has been placed, which may be on another screen.
void SettingsView::moveEvent(QMoveEvent *) { fit(); }

void SettingsView::fit()
{
    const QRect available = roomOnScreen(*this);
    const QSize room = available.size() - (frameGeometry().size() - size());
    QSize wanted(std::max(windowWidth, layout()->minimumSize().width()),
                 qRound(smallestHeight * std::max(1.0, textScale())));
    for (const auto *sheet : findChildren<Sheet *>(Qt::FindDirectChildrenOnly)) {
        if (!sheet->isHidden())
            wanted = wanted.expandedTo(sheet->neededSize());
    }
    const auto *page = static_cast<const Page *>(m_pages->currentWidget());
    const int width = std::min(wanted.width(), room.width());
    const int height = layout()->contentsMargins().top() + m_tabs->sizeHint().height() + layout()->spacing() +
                       page->idealHeight(width) +
                       (m_trouble->isHidden() ? 0 : layout()->spacing() + m_trouble->heightForWidth(width));
    const QSize fitting = wanted.expandedTo({0, height}).boundedTo(room);
    if (fitting == size())
        return;
    setFixedSize(fitting);
    const int beyond = frameGeometry().bottom() - available.bottom();
    if (isVisible() && beyond > 0)
        move(x(), std::max(available.top(), y() - beyond));
}

} // namespace ambertide
