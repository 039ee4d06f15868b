#include "controls/TextLabel.h"

#include <QApplication>
#include <QEvent>

namespace ambertide {

TextLabel::TextLabel(const QString &text, TextStyle style, Ink ink) : QLabel(text), m_style(style), m_ink(ink)
{
    setTextFormat(Qt::PlainText);
    follow();
}

bool TextLabel::event(QEvent *event)
{
    if (event->type() == QEvent::ApplicationPaletteChange || event->type() == QEvent::ApplicationFontChange)
        follow();
    return QLabel::event(event);
}

void TextLabel::follow()
{
    setFont(textFont(m_style));
    QPalette palette;
    // A disabled control's label keeps the palette's faded colour.
    const QColor ink = Theme::of(QApplication::palette()).*m_ink;
    palette.setColor(QPalette::Active, QPalette::WindowText, ink);
    palette.setColor(QPalette::Inactive, QPalette::WindowText, ink);
    setPalette(palette);
}

} // namespace ambertide
