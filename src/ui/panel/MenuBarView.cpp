#include "ui/panel/MenuBarView.h"

#include "ui/controls/AccessibleApplication.h"
#include "ui/controls/Button.h"
#include "ui/controls/Drawing.h"
#include "ui/controls/SwitchRow.h"
#include "ui/controls/TextLabel.h"
#include "ui/panel/TemperatureSlider.h"

#include <QEvent>
#include <QFrame>
#include <QHBoxLayout>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>
#include <map>
#include <utility>

namespace ambertide {

namespace {

// Logical pixels.
constexpr int panelWidth = 300;
constexpr int bottomPadding = 8;
constexpr int headerGap = 12;
constexpr int headerPadding = 9;
constexpr int titlePadding = 5;
constexpr int bodySpacing = 4;
constexpr int defaultSpacing = 8;
constexpr int defaultPadding = 16;
constexpr int rowMargin = 8;
constexpr int rowPaddingX = 8;
constexpr int rowPaddingY = 6;
constexpr int dividerPadding = 2;
constexpr int gearSize = 14;

QLayout *padded(QWidget *widget, int horizontal, int vertical = 0)
{
    auto *layout = new QHBoxLayout;
    layout->setContentsMargins(horizontal, vertical, horizontal, vertical);
    layout->addWidget(widget);
    return layout;
}

QLayout *divider()
{
    auto *line = new QFrame;
    line->setFrameShape(QFrame::HLine);
    line->setFixedHeight(1);
    setAccessibleRole(*line, QAccessible::Separator);
    return padded(line, 0, dividerPadding);
}

/// A schedule that somebody has written by hand may hold any number.
long long wholeKelvin(double temperature) { return static_cast<long long>(std::clamp(temperature, -1e18, 1e18)); }

} // namespace

MenuBarView::MenuBarView(AppViewModel &viewModel, HapticPerformer &haptics)
    : m_viewModel(viewModel), m_haptics(haptics), m_scheduleEnabled(viewModel.scheduleEnabled()),
      m_temperature(viewModel.temperature()), m_title(new TextLabel({}, TextStyle::Title3)),
      m_temperatureLabel(new TextLabel({}, TextStyle::Subheadline)),
      m_slider(new TemperatureSlider(AppViewModel::minTemperature, AppViewModel::maxTemperature,
                                     AppViewModel::temperatureStep)),
      m_refusal(new TextLabel({}, TextStyle::Caption, &Theme::orangeText)),
      m_schedule(new SwitchRow(tr("Enable Schedule"), SwitchRow::Kind::Menu)),
      m_nothingScheduled(new Button(
          tr("Nothing is scheduled yet..."),
          {.kind = Button::Kind::Row, .paddingX = rowPaddingX, .paddingY = rowPaddingY, .ink = &Theme::accentText})),
      m_footnote(new TextLabel({}, TextStyle::Caption, &Theme::secondaryText))
{
    m_temperatureLabel->setAlignment(Qt::AlignCenter);
    m_slider->setAccessibleName(tr("Color temperature"));
    m_refusal->setAlignment(Qt::AlignCenter);
    m_refusal->setWordWrap(true);
    m_refusal->setContentsMargins(defaultPadding, bodySpacing, defaultPadding, bodySpacing);
    m_footnote->setWordWrap(true);
    m_footnote->setContentsMargins(defaultPadding, bottomPadding, defaultPadding, bottomPadding);
    m_schedule->setChecked(m_scheduleEnabled);
    auto *quit =
        new Button(tr("Quit Ambertide"), {.kind = Button::Kind::Row, .paddingX = rowPaddingX, .paddingY = rowPaddingY});

    auto *body = new QVBoxLayout;
    body->setSpacing(0);
    body->addLayout(padded(m_temperatureLabel, defaultPadding));
    body->addSpacing(bodySpacing);
    body->addLayout(sliderBlock());
    body->addSpacing(bodySpacing - TemperatureSlider::shadowRoom);
    body->addWidget(m_refusal);
    body->addLayout(divider());
    body->addSpacing(bodySpacing);
    body->addLayout(padded(m_schedule, rowMargin));
    body->addLayout(padded(m_nothingScheduled, rowMargin));
    body->addSpacing(bodySpacing);
    body->addLayout(divider());
    body->addSpacing(bodySpacing);
    body->addLayout(padded(quit, rowMargin));
    body->addWidget(m_footnote);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, bottomPadding);
    layout->setSpacing(headerGap);
    layout->addLayout(header());
    layout->addLayout(body);

    connect(m_slider, &TemperatureSlider::valueChosen, &m_viewModel, &AppViewModel::setTemperature);
    connect(m_slider, &TemperatureSlider::editingChanged, this, &MenuBarView::handleEditing);
    connect(m_schedule, &SwitchRow::clicked, &m_viewModel, &AppViewModel::setScheduleEnabled);
    connect(m_nothingScheduled, &Button::clicked, this, &MenuBarView::scheduleRequested);
    connect(quit, &Button::clicked, this, &MenuBarView::quitRequested);
    connect(&m_viewModel, &AppViewModel::changed, this, &MenuBarView::follow);
    showTemperature();
    showNotices();
    setFootnote({});
}

QLayout *MenuBarView::header()
{
    auto *gear = new Button(tr("Settings"), {.kind = Button::Kind::Icon,
                                             .symbol = symbols::gearshape,
                                             .symbolSize = gearSize,
                                             .ink = &Theme::secondaryText,
                                             .hoverInk = &Theme::text});
    connect(gear, &Button::clicked, this, &MenuBarView::settingsRequested);
    auto *row = new QHBoxLayout;
    row->setContentsMargins(headerPadding, headerPadding, headerPadding, 0);
    row->setSpacing(0);
    row->addSpacing(titlePadding);
    row->addWidget(m_title);
    row->addStretch();
    row->addWidget(gear);
    return row;
}

QLayout *MenuBarView::sliderBlock()
{
    const auto endLabel = [](double kelvin) {
        return new TextLabel(tr("%1K").arg(kelvin, 0, 'f', 0), TextStyle::Caption, &Theme::secondaryText);
    };
    auto *labels = new QHBoxLayout;
    labels->setContentsMargins(defaultPadding, 0, defaultPadding, 0);
    labels->addWidget(endLabel(1000));
    labels->addStretch();
    labels->addWidget(endLabel(6500));
    auto *block = new QVBoxLayout;
    block->setSpacing(defaultSpacing - TemperatureSlider::shadowRoom);
    block->addLayout(labels);
    block->addLayout(padded(m_slider, defaultPadding - TemperatureSlider::shadowRoom));
    return block;
}

QString MenuBarView::temperatureText(double temperature)
{
    if (temperature >= AppViewModel::neutralTemperature)
        return tr("Normal (Daylight)");
    const auto kelvin = wholeKelvin(temperature);
    const QString description = getTemperatureDescription(temperature);
    return description.isEmpty() ? tr("%1K").arg(kelvin) : tr("%1K (%2)").arg(kelvin).arg(description);
}

QString MenuBarView::getTemperatureDescription(double temperature)
{
    const std::map<long long, QString> descriptions = {{1900, tr("Candle")},   {2700, tr("Tungsten")},
                                                       {3400, tr("Halogen")},  {4200, tr("Fluorescent")},
                                                       {5500, tr("Sunlight")}, {6500, tr("Daylight")}};
    const auto found = descriptions.find(wholeKelvin(temperature));
    return found != descriptions.end() ? found->second : QString();
}

QString MenuBarView::refusalText(const std::optional<TintRefusal> &refusal)
{
    if (!refusal)
        return {};
    switch (refusal->reason) {
    case TintRefusal::Reason::Desktop:
        return tr("This desktop lets no program tint the displays.");
    case TintRefusal::Reason::Displays:
        return tr("None of the displays here can be tinted.");
    case TintRefusal::Reason::Suspended:
        break;
    }
    return tr("Night Light is suspended, and so is the tint.");
}

QString MenuBarView::statusText(const AppViewModel &viewModel)
{
    const auto refusal = viewModel.tintRefusal();
    return refusal ? refusalText(refusal) : temperatureText(viewModel.temperature());
}

void MenuBarView::setFootnote(const QString &text)
{
    m_footnote->setText(text);
    m_footnote->setVisible(!text.isEmpty());
}

void MenuBarView::handleEditing(bool isEditing)
{
    m_isDragging = isEditing;
    if (isEditing)
        m_viewModel.handleManualChange();
    else
        m_haptics.performLevelChange();
}

void MenuBarView::follow()
{
    const double former = std::exchange(m_temperature, m_viewModel.temperature());
    if (former != m_temperature) {
        if (m_isDragging && wholeKelvin(former / 100) != wholeKelvin(m_temperature / 100))
            m_haptics.performLevelChange();
        showTemperature();
    }
    const bool isOn = m_viewModel.scheduleEnabled();
    if (std::exchange(m_scheduleEnabled, isOn) != isOn)
        m_haptics.performLevelChange();
    m_schedule->setChecked(isOn);
    showNotices();
}

void MenuBarView::showTemperature()
{
    const QString text = temperatureText(m_temperature);
    const bool hasFrame = !window()->windowFlags().testFlag(Qt::FramelessWindowHint); // with the name in its title bar
    m_title->setText(hasFrame ? text : QStringLiteral("Ambertide"));
    m_temperatureLabel->setText(text);
    m_temperatureLabel->setVisible(!hasFrame);
    m_slider->follow(m_temperature);
}

void MenuBarView::showNotices()
{
    m_refusal->setText(refusalText(m_viewModel.tintRefusal()));
    m_refusal->setVisible(!m_refusal->text().isEmpty());
    m_nothingScheduled->setVisible(m_scheduleEnabled && !m_viewModel.isAnythingScheduled());
}

// Not by a focus proxy, which would also take the focus each time that Tab comes round.
void MenuBarView::showEvent(QShowEvent *) { m_slider->setFocus(Qt::PopupFocusReason); }

bool MenuBarView::event(QEvent *event)
{
    const bool isHandled = QWidget::event(event);
    if (event->type() == QEvent::ApplicationFontChange) // of which the labels hear after this
        QTimer::singleShot(0, this, &MenuBarView::takePlace);
    else if (event->type() == QEvent::ParentChange) // whether there is a frame around it is known only now
        takePlace();
    else if (event->type() == QEvent::LayoutRequest)
        fitWidth();
    return isHandled;
}

/// Makes room for the text of every temperature, so that the slider keeps its length while that changes.
void MenuBarView::takePlace()
{
    showTemperature();
    auto *const label = m_temperatureLabel->isHidden() ? m_title : m_temperatureLabel;
    int widest = 0;
    for (const double kelvin : {1000, 1900, 2700, 3400, 4200, 5500, 6500})
        widest = std::max(widest, label->fontMetrics().horizontalAdvance(temperatureText(kelvin)));
    label->setMinimumWidth(widest);
    setMinimumWidth(0);
    layout()->activate(); // layouts within it remember the widths of before
    fitWidth();
}

/// For other texts it grows, and does not shrink again.
void MenuBarView::fitWidth() { setFixedWidth(std::max({panelWidth, minimumWidth(), layout()->minimumSize().width()})); }

} // namespace ambertide
