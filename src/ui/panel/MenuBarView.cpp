#include "ui/panel/MenuBarView.h"

#include "ui/controls/Button.h"
#include "ui/controls/Divider.h"
#include "ui/controls/SwitchRow.h"
#include "ui/controls/Symbol.h"
#include "ui/controls/TextLabel.h"
#include "ui/panel/Color.h"
#include "ui/panel/TemperatureSlider.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QVBoxLayout>

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
constexpr int dividerPadding = 2;
constexpr int gearSize = 14;

QVBoxLayout *stack(QWidget *owner, int spacing)
{
    auto *layout = new QVBoxLayout(owner);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing);
    return layout;
}

QLayout *padded(QWidget *widget, int horizontal, int vertical = 0)
{
    auto *layout = new QHBoxLayout;
    layout->setContentsMargins(horizontal, vertical, horizontal, vertical);
    layout->addWidget(widget);
    return layout;
}

int hundreds(double temperature) { return static_cast<int>(temperature / 100); }

} // namespace

MenuBarView::MenuBarView(AppViewModel &viewModel, HapticPerformer &haptics)
    : m_viewModel(viewModel), m_haptics(haptics), m_scheduleEnabled(viewModel.scheduleEnabled()),
      m_temperature(viewModel.temperature())
{
    m_temperatureLabel = new TextLabel({}, TextStyle::Subheadline);
    m_temperatureLabel->setAlignment(Qt::AlignCenter);
    auto *block = sliderBlock();
    m_schedule = new SwitchRow(tr("Enable Schedule"), SwitchRow::Kind::Menu);
    m_schedule->show(m_scheduleEnabled);
    auto *quit = new RowButton(tr("Quit Ambertide"), {});

    auto *layout = stack(this, headerGap);
    layout->setContentsMargins(0, 0, 0, bottomPadding);
    layout->addWidget(header());
    auto *body = new QVBoxLayout;
    body->setSpacing(0);
    body->addLayout(padded(m_temperatureLabel, defaultPadding));
    body->addSpacing(bodySpacing);
    body->addLayout(padded(block, defaultPadding));
    body->addSpacing(bodySpacing - TemperatureSlider::shadowRoom);
    body->addLayout(padded(new Divider, 0, dividerPadding));
    body->addSpacing(bodySpacing);
    body->addLayout(padded(m_schedule, rowMargin));
    body->addSpacing(bodySpacing);
    body->addLayout(padded(new Divider, 0, dividerPadding));
    body->addSpacing(bodySpacing);
    body->addLayout(padded(quit, rowMargin));
    layout->addLayout(body);

    connect(m_schedule, &SwitchRow::clicked, this, [this](bool isOn) { m_viewModel.setScheduleEnabled(isOn); });
    connect(quit, &RowButton::clicked, this, &MenuBarView::quitRequested);
    connect(&m_viewModel, &AppViewModel::changed, this, &MenuBarView::follow);
    follow();
    fitWidth();
}

QWidget *MenuBarView::header()
{
    auto *row = new QWidget;
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(headerPadding, headerPadding, headerPadding, 0);
    layout->setSpacing(0);
    layout->addSpacing(titlePadding);
    layout->addWidget(new TextLabel(QStringLiteral("Ambertide"), TextStyle::Title3));
    layout->addStretch();
    auto *gear = new IconButton({.symbol = symbols::gearshape, .symbolSize = gearSize, .hoverInk = &Theme::text},
                                tr("Settings"));
    layout->addWidget(gear);
    connect(gear, &IconButton::clicked, this, &MenuBarView::settingsRequested);
    return row;
}

QWidget *MenuBarView::sliderBlock()
{
    auto *block = new QWidget;
    auto *layout = stack(block, defaultSpacing);
    const auto endLabel = [](double kelvin) {
        return new TextLabel(tr("%1K").arg(kelvin, 0, 'f', 0), TextStyle::Caption, &Theme::secondaryText);
    };
    auto *labels = new QHBoxLayout;
    labels->addWidget(endLabel(1000));
    labels->addStretch();
    labels->addWidget(endLabel(6500));
    layout->addLayout(labels);
    m_slider = new TemperatureSlider(m_temperature, {.minValue = AppViewModel::minTemperature,
                                                     .maxValue = AppViewModel::maxTemperature,
                                                     .step = AppViewModel::temperatureStep});
    m_slider->setAccessibleName(tr("Color temperature"));
    layout->addWidget(m_slider);
    connect(m_slider, &TemperatureSlider::valueChosen, &m_viewModel, &AppViewModel::setTemperature);
    connect(m_slider, &TemperatureSlider::editingChanged, this, &MenuBarView::handleEditing);
    return block;
}

QString MenuBarView::temperatureText(double temperature)
{
    if (temperature >= AppViewModel::neutralTemperature)
        return tr("Normal (Daylight)");
    const auto kelvin = static_cast<long long>(temperature);
    const QString description = getTemperatureDescription(temperature);
    return description.isEmpty() ? tr("%1K").arg(kelvin) : tr("%1K (%2)").arg(kelvin).arg(description);
}

QString MenuBarView::getTemperatureDescription(double temperature)
{
    switch (static_cast<long long>(temperature)) {
    case 1900:
        return tr("Candle");
    case 2700:
        return tr("Tungsten");
    case 3400:
        return tr("Halogen");
    case 4200:
        return tr("Fluorescent");
    case 5500:
        return tr("Sunlight");
    case 6500:
        return tr("Daylight");
    default:
        return {};
    }
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
    if (m_isDragging && hundreds(former) != hundreds(m_temperature))
        m_haptics.performLevelChange();
    m_temperatureLabel->setText(temperatureText(m_temperature));
    m_slider->setValue(m_temperature);
    QPalette tint;
    tint.setColor(QPalette::Highlight, Color::fromTemperature(m_temperature));
    m_slider->setPalette(tint);

    const bool isOn = m_viewModel.scheduleEnabled();
    if (std::exchange(m_scheduleEnabled, isOn) != isOn)
        m_haptics.performLevelChange();
    m_schedule->show(isOn);
}

// A focus proxy would catch every round of Tab.
void MenuBarView::showEvent(QShowEvent *) { m_slider->setFocus(Qt::PopupFocusReason); }

bool MenuBarView::event(QEvent *event)
{
    const bool isHandled = QWidget::event(event);
    if (event->type() == QEvent::ApplicationFontChange)
        fitWidth();
    return isHandled;
}

void MenuBarView::fitWidth()
{
    setMinimumWidth(0);
    setFixedWidth(qMax(panelWidth, layout()->minimumSize().width()));
}

} // namespace ambertide
