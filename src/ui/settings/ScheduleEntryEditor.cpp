#include "ui/settings/ScheduleEntryEditor.h"

#include "ui/controls/Button.h"
#include "ui/controls/SwitchRow.h"
#include "ui/controls/TimeField.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QSlider>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>

namespace ambertide {

namespace {

constexpr int padding = 16;
constexpr int gap = 20;
constexpr int smallGap = 8;
constexpr int widestTemperature = 240;
constexpr int pageSteps = 5;
constexpr int buttonGap = 8; // which makes 12 between their frames

QHBoxLayout *row(QWidget *first, QWidget *second)
{
    auto *line = new QHBoxLayout;
    line->addWidget(first);
    line->addStretch();
    line->addWidget(second);
    return line;
}

QTime timeOfDay(const Calendar &calendar, Date date)
{
    const auto parts = calendar.timeOfDay(date);
    return {parts.hour.value_or(0), parts.minute.value_or(0)};
}

} // namespace

ScheduleEntryEditor::ScheduleEntryEditor(const ScheduleEntry &entry, const TemperatureRange &range,
                                         const Calendar &calendar)
    : m_editedEntry(entry), m_calendar(calendar), m_time(new TimeField(tr("Time"))),
      m_temperatureText(new TextLabel({})), m_temperature(new QSlider(Qt::Horizontal)),
      m_isEnabled(new SwitchRow(tr("Enabled"), SwitchRow::Kind::Inline)),
      m_save(new Button(tr("Save"), Button::Kind::Prominent))
{
    m_time->setTime(timeOfDay(calendar, entry.time));
    m_temperature->setAccessibleName(tr("Temperature"));
    m_temperature->setRange(qRound(range.min), qRound(range.max));
    m_temperature->setSingleStep(qRound(range.step));
    m_temperature->setPageStep(pageSteps * m_temperature->singleStep());
    m_temperature->setValue(qRound(std::clamp(entry.temperature, range.min, range.max)));
    m_isEnabled->setChecked(entry.isEnabled);
    showTemperature();

    auto *time = new QHBoxLayout;
    time->setSpacing(smallGap);
    time->addStretch();
    time->addWidget(new TextLabel(tr("Time")));
    time->addWidget(m_time);
    time->addStretch();
    auto *temperature = new QVBoxLayout;
    temperature->setSpacing(smallGap);
    auto *name = new TextLabel(tr("Temperature:"));
    temperature->addLayout(row(name, m_temperatureText));
    temperature->addWidget(m_temperature);
    // So that nothing moves while the slider does.
    const QFontMetrics metrics = name->fontMetrics();
    int widest = 0;
    for (const double kelvin : {range.min, range.max}) {
        auto shown = entry;
        shown.temperature = kelvin;
        widest = std::max(widest, metrics.horizontalAdvance(shown.temperatureString()));
    }
    temperature->addStrut(metrics.horizontalAdvance(name->text()) + smallGap + widest);
    temperature->addLayout(row(new TextLabel(tr("Warm"), TextStyle::Caption, &Theme::orangeText),
                               new TextLabel(tr("Neutral"), TextStyle::Caption, &Theme::blueText)));
    auto *cancel = new Button(tr("Cancel"));
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(buttonGap);
    buttons->addStretch();
    buttons->addWidget(cancel);
    buttons->addWidget(m_save);
    buttons->addStretch();

    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(padding, padding, padding, padding);
    column->setSpacing(gap);
    column->addWidget(new TextLabel(tr("Edit Schedule Entry"), TextStyle::Headline), 0, Qt::AlignHCenter);
    column->addLayout(time);
    column->addLayout(temperature);
    column->addWidget(m_isEnabled, 0, Qt::AlignHCenter);
    column->addLayout(buttons);
    column->addStretch();

    connect(m_time, &TimeField::timeChanged, this, &ScheduleEntryEditor::takeTime);
    connect(m_temperature, &QSlider::valueChanged, this, &ScheduleEntryEditor::setTemperature);
    connect(m_isEnabled, &SwitchRow::toggled, this, [this](bool isOn) { m_editedEntry.isEnabled = isOn; });
    connect(cancel, &Button::clicked, this, &ScheduleEntryEditor::cancelled);
    connect(m_save, &Button::clicked, this, &ScheduleEntryEditor::save);
}

bool ScheduleEntryEditor::event(QEvent *event)
{
    if (event->type() == QEvent::ApplicationFontChange) // of which the label hears after this
        QTimer::singleShot(0, this, &ScheduleEntryEditor::showTemperature);
    return QWidget::event(event);
}

void ScheduleEntryEditor::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        save();
    else
        QWidget::keyPressEvent(event);
}

void ScheduleEntryEditor::takeTime()
{
    const auto time = m_time->time();
    m_save->setEnabled(time && !m_isSaved);
    if (time)
        m_editedEntry.time =
            m_calendar.date({.hour = time->hour(), .minute = time->minute()}).value_or(m_editedEntry.time);
}

void ScheduleEntryEditor::save()
{
    if (!m_save->isEnabled())
        return;
    m_isSaved = true;
    m_save->setEnabled(false);
    QTimer::singleShot(0, this, [this] { Q_EMIT saved(m_editedEntry); });
}

void ScheduleEntryEditor::setTemperature(int kelvin)
{
    const int step = m_temperature->singleStep();
    const int stepped = qRound(static_cast<double>(kelvin) / step) * step;
    if (stepped != kelvin)
        return m_temperature->setValue(stepped);
    m_editedEntry.temperature = kelvin;
    showTemperature();
}

void ScheduleEntryEditor::showTemperature()
{
    const QString text = m_editedEntry.temperatureString();
    // A temperature that another program has stored may have any number of digits.
    const int room = qRound(widestTemperature * std::max(1.0, textScale()));
    m_temperatureText->setText(m_temperatureText->fontMetrics().elidedText(text, Qt::ElideRight, room));
    m_temperature->setAccessibleDescription(text);
}

} // namespace ambertide
