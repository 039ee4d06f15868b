#include "ui/controls/Button.h"

namespace ambertide {

Button::Button(const QString &text, Kind kind) : Button(text, Look{.kind = kind}) {}

Button::Button(const QString &text, const Look &look) : m_look(look)
{
    setAutoDefault(true);
    setSizePolicy(look.kind == Kind::Row ? QSizePolicy::Expanding : QSizePolicy::Fixed, QSizePolicy::Fixed);
    if (look.kind == Kind::Icon) {
        setAccessibleName(text);
        setToolTip(text);
    } else {
        setText(text);
    }
}

void Button::setSymbol(QLatin1String symbol, TextLabel::Ink ink)
{
    m_look.symbol = symbol;
    m_look.ink = ink;
    update();
}

} // namespace ambertide
