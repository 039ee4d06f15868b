#include "ui/controls/Button.h"

#include "ui/controls/Drawing.h"
#include "ui/controls/Symbol.h"

#include <QEvent>
#include <QPainter>
#include <QStyle>

namespace ambertide {

namespace {

constexpr int buttonPaddingX = 12;
constexpr int buttonPaddingY = 5;
constexpr int rowSymbolSize = 14;
constexpr int rowSymbolGap = 6;

} // namespace

PushControl::PushControl(const QString &text) : QPushButton(text)
{
    setAutoDefault(true);
    setAttribute(Qt::WA_Hover);
    setFont(textFont(TextStyle::Body));
}

bool PushControl::event(QEvent *event)
{
    if (event->type() == QEvent::ApplicationFontChange) {
        setFont(textFont(TextStyle::Body));
        updateGeometry();
    }
    return QPushButton::event(event);
}

Button::Button(const QString &text, Kind kind) : PushControl(text), m_kind(kind)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize Button::sizeHint() const
{
    const QFontMetrics metrics(font());
    return {metrics.horizontalAdvance(text()) + 2 * (buttonPaddingX + ringGap),
            metrics.height() + 2 * (buttonPaddingY + ringGap)};
}

void Button::paintEvent(QPaintEvent *)
{
    const auto theme = Theme::of(palette());
    const bool isProminent = m_kind == Kind::Prominent;
    QPainter painter(this);
    painter.setOpacity(isEnabled() ? 1 : disabledOpacity);
    const QRectF shape = QRectF(rect()).adjusted(ringGap, ringGap, -ringGap, -ringGap);
    fillRounded(painter, shape, controlRadius, isProminent ? theme.accent : theme.button);
    if (!isProminent || theme.isHighContrast)
        strokeRounded(painter, shape, controlRadius, theme.buttonOutline);
    if (isDown())
        fillRounded(painter, shape, controlRadius, QColor(0, 0, 0, 40));
    else if (underMouse() && isEnabled())
        fillRounded(painter, shape, controlRadius, isProminent ? QColor(0, 0, 0, 20) : theme.hover);
    painter.setPen(isProminent ? theme.onAccent : theme.text);
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextShowMnemonic, text());
    if (showsFocusRing(*this))
        drawFocusRing(painter, rect(), controlRadius + ringGap, isProminent ? theme.text : theme.accent);
}

IconButton::IconButton(const Look &look, const QString &name) : m_look(look)
{
    setAccessibleName(name);
    setToolTip(name);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize IconButton::sizeHint() const
{
    const int side = qRound(m_look.symbolSize * textScale()) + 2 * m_look.padding;
    return {side, side};
}

void IconButton::paintEvent(QPaintEvent *)
{
    const auto theme = Theme::of(palette());
    QPainter painter(this);
    painter.setOpacity(isEnabled() ? 1 : disabledOpacity);
    const bool isHovered = underMouse() && isEnabled();
    if (isHovered)
        fillRounded(painter, rect(), controlRadius, theme.hover);
    const double size = width() - 2.0 * m_look.padding;
    const QRectF square(m_look.padding, (height() - size) / 2, size, size);
    drawSymbol(painter, square, m_look.symbol, theme.*(isHovered && m_look.hoverInk ? *m_look.hoverInk : m_look.ink));
    if (showsFocusRing(*this))
        drawFocusRing(painter, rect(), controlRadius, theme.accent);
}

RowButton::RowButton(const QString &text, const Look &look) : PushControl(text), m_look(look)
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize RowButton::sizeHint() const
{
    const QFontMetrics metrics(font());
    const int symbol = m_look.symbol ? qRound(rowSymbolSize * textScale()) + rowSymbolGap : 0;
    return {metrics.horizontalAdvance(text()) + symbol + 2 * m_look.horizontalPadding,
            metrics.height() + 2 * m_look.verticalPadding};
}

void RowButton::paintEvent(QPaintEvent *)
{
    const auto theme = Theme::of(palette());
    QPainter painter(this);
    const bool isHovered = underMouse() && isEnabled();
    painter.setOpacity(!isEnabled() ? disabledOpacity : isHovered ? hoveredRowOpacity : 1);
    const int inset = m_look.highlightInset;
    const QRect highlight = rect().adjusted(inset, inset, -inset, -inset);
    if (isHovered)
        fillRounded(painter, highlight, controlRadius, theme.hover);
    const QColor ink = theme.*(isHovered ? m_look.hoverInk : m_look.ink);
    QRect line = rect().adjusted(m_look.horizontalPadding, 0, -m_look.horizontalPadding, 0);
    if (m_look.symbol) {
        const int size = qRound(rowSymbolSize * textScale());
        const QRect square(line.left(), (height() - size) / 2, size, size);
        drawSymbol(painter, style()->visualRect(layoutDirection(), rect(), square), *m_look.symbol, ink);
        line.setLeft(line.left() + size + rowSymbolGap);
    }
    painter.setPen(ink);
    painter.drawText(style()->visualRect(layoutDirection(), rect(), line),
                     static_cast<int>(style()->visualAlignment(layoutDirection(), Qt::AlignLeft | Qt::AlignVCenter)),
                     text());
    if (showsFocusRing(*this))
        drawFocusRing(painter, highlight, controlRadius, theme.accent);
}

} // namespace ambertide
