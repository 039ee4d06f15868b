#include "ui/settings/ScheduleEntryRow.h"

#include "ui/controls/Button.h"
#include "ui/controls/Drawing.h"
#include "ui/controls/Symbol.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QStyle>
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
constexpr int highlightInset = 4;

TextLabel *label(TextStyle style, TextLabel::Ink ink = &Theme::secondaryText)
{
    auto *text = new TextLabel({}, style, ink);
    text->setAttribute(Qt::WA_TransparentForMouseEvents);
    return text;
}

} // namespace

ScheduleEntryRow::ScheduleEntryRow()
    : m_time(label(TextStyle::Headline, &Theme::text)), m_temperature(label(TextStyle::Subheadline)),
      m_disabled(label(TextStyle::Caption)),
      m_edit(new IconButton({.symbol = symbols::pencil, .padding = buttonPadding, .ink = &Theme::accentOnHover},
                            tr("Edit"))),
      m_delete(new IconButton({.symbol = symbols::trash, .padding = buttonPadding, .ink = &Theme::red}, tr("Delete")))
{
    setAutoDefault(true);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    // A temperature that somebody else has stored may have any number of digits.
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
    line->addSpacing(paddingX + statusWidth + gap);
    line->addLayout(texts, 1);
    line->addWidget(m_disabled);
    line->addWidget(m_edit);
    line->addWidget(m_delete);
    line->addSpacing(paddingX - buttonPadding);

    connect(this, &QPushButton::clicked, this, &ScheduleEntryRow::editRequested);
    connect(m_edit, &IconButton::clicked, this, &ScheduleEntryRow::editRequested);
    connect(m_delete, &IconButton::clicked, this, &ScheduleEntryRow::deleteRequested);
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
    update();
}

QWidget *ScheduleEntryRow::lastInTabOrder() const { return m_delete; }

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
        event->ignore(); // for the list
        break;
    default:
        QPushButton::keyPressEvent(event);
    }
}

void ScheduleEntryRow::paintEvent(QPaintEvent *)
{
    const auto theme = Theme::of(palette());
    QPainter painter(this);
    const QRectF highlight = QRectF(rect()).adjusted(highlightInset, highlightInset, -highlightInset, -highlightInset);
    if (underMouse())
        fillRounded(painter, highlight, controlRadius, theme.hover);
    const int size = qMin(statusWidth, qRound(symbolSize * textScale()));
    const QRect status(paddingX + (statusWidth - size) / 2, (height() - size) / 2, size, size);
    drawSymbol(painter, style()->visualRect(layoutDirection(), rect(), status),
               m_isActive ? symbols::checkmarkCircleFill : symbols::clock,
               m_isActive ? theme.green : theme.accentOnHover, theme.card);
    if (showsFocusRing(*this))
        drawFocusRing(painter, highlight, controlRadius, theme.accent);
}

} // namespace ambertide
