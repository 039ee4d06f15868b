#pragma once

#include "ui/controls/TextStyle.h"
#include "ui/controls/Theme.h"

#include <QLabel>

namespace ambertide {

/// Plain text in one of the text styles and one colour of the theme. Follows changes of the font and the palette.
class TextLabel final : public QLabel
{
    Q_OBJECT

public:
    using Ink = QColor Theme::*;

    explicit TextLabel(const QString &text, TextStyle style = TextStyle::Body, Ink ink = &Theme::text);

protected:
    bool event(QEvent *event) override;

private:
    void follow();

    TextStyle m_style;
    Ink m_ink;
};

} // namespace ambertide
