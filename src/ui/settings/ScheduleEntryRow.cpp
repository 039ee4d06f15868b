#include "ui/settings/ScheduleEntryRow.h"

#include "ui/controls/Drawing.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QVBoxLayout>

namespace ambertide {

namespace {

constexpr int paddingX = 14;
constexpr int paddingY = 8;
constexpr int lineGap = 2;
constexpr int gap = 8;
constexpr int statusWidth = 20;
constexpr int symbolSize = 16;
constexpr int buttonPadding = 6; // around each symbol, so that two stand 12 apart
constexpr int disabledPadding = 8;

Button *iconButton(const QString &name, QLatin1String symbol, TextLabel::Ink ink)
{
    return new Button(name, {.kind = Button::Kind::Icon,
                             .symbol = symbol,
                             .paddingX = buttonPadding,
                             .paddingY = buttonPadding,
                             .ink = ink});
}

TextLabel *label(TextStyle style, TextLabel::Ink ink = &Theme::secondaryText)
{
    auto *text = new TextLabel({}, style, ink);
    text->setAttribute(Qt::WA_TransparentForMouseEvents);
    return text;
}

} // namespace

ScheduleEntryRow::ScheduleEntryRow()
    : Button({}, {.kind = Kind::Row,
                  .symbolSize = symbolSize,
                  .paddingX = paddingX + (statusWidth - symbolSize) / 2,
                  .highlightInset = 4}),
      m_statusRoom(new QSpacerItem(0, 0)), m_time(label(TextStyle::Headline, &Theme::text)),
      m_temperature(label(TextStyle::Subheadline)), m_disabled(label(TextStyle::Caption)),
      m_edit(iconButton(tr("Edit"), symbols::pencil, &Theme::accent)),
      m_delete(iconButton(tr("Delete"), symbols::trash, &Theme::red))
{
    // A temperature that another program has stored may have any number of digits.
    m_temperature->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_disabled->setText(tr("Disabled"));
    m_disabled->setContentsMargins(disabledPadding, 0, disabledPadding, 0);

    auto *texts = new QVBoxLayout;
    texts->setSpacing(lineGap);
    texts->addWidget(m_time);
    texts->addWidget(m_temperature);
    auto *line = new QHBoxLayout(this);
    line->setContentsMargins(0, paddingY, 0, paddingY); // margins are not mirrored, spacings are
    line->setSpacing(0);
    line->addItem(m_statusRoom);
    line->addLayout(texts, 1);
    line->addWidget(m_disabled);
    line->addWidget(m_edit);
    line->addWidget(m_delete);
    line->addSpacing(paddingX - buttonPadding);

    connect(this, &Button::clicked, this, &ScheduleEntryRow::editRequested);
    connect(m_edit, &Button::clicked, this, &ScheduleEntryRow::editRequested);
    connect(m_delete, &Button::clicked, this, &ScheduleEntryRow::deleteRequested);
}

void ScheduleEntryRow::setEntry(const ScheduleEntry &entry, const QString &time, bool isActive)
{
    if (m_entry == entry && m_time->text() == time && m_isActive == isActive)
        return;
    m_entry = entry;
    m_isActive = isActive;
    const QString temperature = entry.temperatureString();
    m_time->setText(time);
    m_temperature->setText(temperature);
    m_disabled->setVisible(!entry.isEnabled);
    m_edit->setAccessibleName(tr("Edit %1").arg(time));
    m_delete->setAccessibleName(tr("Delete %1").arg(time));
    QStringList name = {time, temperature};
    if (!entry.isEnabled)
        name.append(tr("disabled"));
    if (isActive)
        name.append(tr("active"));
    setAccessibleName(name.join(QLatin1String(", ")));
    setSymbol(isActive ? symbols::checkmarkCircleFill : symbols::clock, isActive ? &Theme::green : &Theme::accent);
}

QWidget *ScheduleEntryRow::lastInTabOrder() const { return m_delete; }

void ScheduleEntryRow::changeEvent(QEvent *event)
{
    Button::changeEvent(event);
    if (event->type() != QEvent::FontChange)
        return;
    m_statusRoom->changeSize(paddingX + qRound(statusWidth * textScale()) + gap, 0);
    layout()->invalidate();
}

QSize ScheduleEntryRow::sizeHint() const { return layout()->sizeHint(); }

void ScheduleEntryRow::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
        Q_EMIT deleteRequested();
        break;
    case Qt::Key_Up:
    case Qt::Key_Down:
        event->ignore(); // the list handles these
        break;
    default:
        Button::keyPressEvent(event);
    }
}

} // namespace ambertide
