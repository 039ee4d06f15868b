#include "ui/controls/TextLabel.h"

#include <QApplication>
#include <QEvent>

namespace ambertide {

TextLabel::TextLabel(const QString &text, TextStyle style, Ink ink) : QLabel(text), m_style(style), m_ink(ink)
{
    setTextFormat(Qt::PlainText);
    setForegroundRole(QPalette::WindowText); // also inside a button
    follow();
}

bool TextLabel::event(QEvent *event)
{
    switch (event->type()) {
    case QEvent::ApplicationPaletteChange:
    case QEvent::ApplicationFontChange:
    case QEvent::LayoutDirectionChange:
        follow();
        break;
    default:
        break;
    }
    return QLabel::event(event);
}

void TextLabel::follow()
{
    setFont(textFont(m_style));
    // By itself a label takes its direction from its text: a time of day would always stand on the left.
    if (!(alignment() & Qt::AlignHCenter))
        setAlignment((isRightToLeft() ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignAbsolute | Qt::AlignVCenter);
    QPalette palette;
    // A disabled control's label keeps the palette's faded colour.
    const QColor ink = Theme::of(QApplication::palette()).*m_ink;
    palette.setColor(QPalette::Active, QPalette::WindowText, ink);
    palette.setColor(QPalette::Inactive, QPalette::WindowText, ink);
    setPalette(palette);
}

} // namespace ambertide
