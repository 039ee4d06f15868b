#pragma once

#include <QColor>
#include <QList>
#include <QPalette>

namespace ambertide {

/// `upper`, which may be translucent, laid over an opaque colour.
QColor blended(const QColor &upper, const QColor &lower);

/// The colours of the windows. Surfaces and text follow a palette; the accent is the product's amber. Colours of text
/// are made darker, or lighter in a dark theme, until they have a contrast of 4.5 with every surface, highlighted or
/// not; those of symbols and fills, until they have one of 3.
struct Theme
{
    QColor window;
    QColor panel;
    QColor card;
    QColor hairline; ///< translucent
    QColor hover;    ///< translucent, laid over the surface under the pointer
    QColor text;
    QColor secondaryText;
    QColor accent; ///< for symbols and fills, like green and red
    QColor green;
    QColor red;
    QColor accentText;
    QColor redText;
    QColor orangeText;
    QColor blueText;
    QColor onAccent; ///< text on the accent
    QColor track;    ///< of a switch that is off, and of the part that a slider has not reached
    QColor trackOutline;
    QColor button;
    QColor buttonOutline;
    bool isDark = false;
    bool isHighContrast = false; ///< text and window are black and white, or nearly so

    static Theme of(const QPalette &palette);

    /// Everything that text is drawn on.
    QList<QColor> surfaces() const;
    /// Symbols are drawn on this, too: two highlights, one over the other, where a row has a button.
    QColor hoveredTwice() const { return blended(hover, blended(hover, card)); }
};

/// Gives selections and links the theme's accent and tool tips the colours of its cards, whatever the desktop's are.
void setAccent(QPalette &palette);

/// The palette for desktops that provide no colours of their own.
QPalette housePalette(bool isDark, bool isHighContrast);

/// Contrast ratio of two opaque colours, 1 to 21, after WCAG 2.1.
double contrastRatio(const QColor &first, const QColor &second);

} // namespace ambertide
