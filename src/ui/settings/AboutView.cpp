#include "ui/settings/AboutView.h"

#include "ports/MainBundle.h"
#include "ui/controls/ApplicationIcon.h"
#include "ui/controls/Button.h"
#include "ui/controls/Drawing.h"
#include "ui/controls/TextLabel.h"

#include <QDesktopServices>
#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include <algorithm>

namespace ambertide {

namespace {

constexpr int iconSize = 100;
constexpr int descriptionWidth = 250;
constexpr int gapInBlock = 20;
constexpr int gapAboveButton = 8;

QString appVersion(const MainBundle &bundle)
{
    const auto version = bundle.information("CFBundleShortVersionString");
    const auto build = bundle.information("CFBundleVersion").value_or(std::string());
    const QString text =
        AboutView::tr("Version %1").arg(version ? QString::fromStdString(*version) : AboutView::tr("Unknown"));
    return build.empty() ? text : text + QStringLiteral(" (%1)").arg(QString::fromStdString(build));
}

/// Invalid unless it is an address that is safe to hand to the desktop.
QUrl webPage(const MainBundle &bundle)
{
    const auto address = bundle.information("AmbertideWebPage").value_or(std::string());
    const QUrl page(QString::fromStdString(address), QUrl::StrictMode);
    return page.scheme() == QLatin1String("https") && !page.host().isEmpty() ? page : QUrl();
}

} // namespace

AboutView::AboutView(const MainBundle &bundle, bool hasFeed)
    : m_description(new TextLabel(tr("A simple solution to controling your display color temperature."),
                                  TextStyle::Body, &Theme::secondaryText)),
      m_checkForUpdates(new Button(tr("Check for Updates...")))
{
    const QUrl page = webPage(bundle);
    auto *link =
        new Button(tr("Web page"), {.kind = Button::Kind::Icon, .symbol = symbols::link, .ink = &Theme::accent});
    link->setEnabled(page.isValid());
    m_checkForUpdates->setVisible(hasFeed);
    connect(link, &Button::clicked, this, [page] { QDesktopServices::openUrl(page); });
    connect(m_checkForUpdates, &Button::clicked, this, &AboutView::checkForUpdatesPressed);

    auto *version = new TextLabel(appVersion(bundle), TextStyle::Body, &Theme::secondaryText);
    version->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_description->setWordWrap(true);
    m_description->setAlignment(Qt::AlignHCenter);
    fitDescription();

    auto *column = new QVBoxLayout;
    column->setSpacing(0);
    column->addWidget(new ApplicationIcon(iconSize), 0, Qt::AlignHCenter);
    column->addSpacing(6);
    column->addWidget(new TextLabel(QStringLiteral("Ambertide"), TextStyle::Title), 0, Qt::AlignHCenter);
    column->addSpacing(4);
    column->addWidget(version, 0, Qt::AlignHCenter);
    column->addSpacing(gapInBlock);
    auto *line = new QHBoxLayout; // with an alignment instead, its height would be that at the whole width
    line->addStretch();
    line->addWidget(m_description, 1);
    line->addStretch();
    column->addLayout(line);
    column->addSpacing(gapInBlock + gapAboveButton);
    column->addWidget(m_checkForUpdates, 0, Qt::AlignHCenter);

    auto *grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->addWidget(link, 0, 0, Qt::AlignTop | Qt::AlignRight);
    grid->addLayout(column, 0, 0);
    setTabOrder(link, m_checkForUpdates);
}

void AboutView::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        fitDescription();
}

void AboutView::fitDescription()
{
    m_description->setMaximumWidth(qRound(descriptionWidth * std::max(1.0, textScale())));
}

void AboutView::setCanCheckForUpdates(bool canCheck) { m_checkForUpdates->setEnabled(canCheck); }

} // namespace ambertide
