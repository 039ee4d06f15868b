#include "ui/controls/Button.h"

#include <QHelpEvent>
#include <QToolTip>

namespace ambertide {

Button::Button(const QString &text, Kind kind) : Button(text, Look{.kind = kind}) {}

Button::Button(const QString &text, const Look &look) : m_look(look)
{
    setAutoDefault(true);
    setSizePolicy(look.kind == Kind::Row ? QSizePolicy::Expanding : QSizePolicy::Fixed, QSizePolicy::Fixed);
    if (look.kind == Kind::Icon) {
        setAccessibleName(text);
        m_tip = text;
    } else {
        setText(text);
    }
}

bool Button::event(QEvent *event)
{
    if (event->type() != QEvent::ToolTip || m_tip.isEmpty())
        return QPushButton::event(event);
    constexpr int raise = 12; // the toolkit adds room for the pointer, at least 16
    const QPoint pointer = static_cast<QHelpEvent *>(event)->globalPos();
    QToolTip::showText({pointer.x(), mapToGlobal(QPoint(0, height() - raise)).y()}, m_tip, this);
    return true;
}

void Button::setSymbol(QLatin1String symbol, TextLabel::Ink ink)
{
    m_look.symbol = symbol;
    m_look.ink = ink;
    update();
}

} // namespace ambertide
