#pragma once

#include <QColor>
#include <QList>
#include <QPalette>

namespace ambertide {

/// `upper` laid over an opaque colour.
QColor blended(const QColor &upper, const QColor &lower);

/// The colours of the windows. Surfaces and text follow a palette; the accent is the product's amber. Colours of text
/// are moved towards the text's end of the scale until they keep a contrast of 4.5 against every surface, hovered or
/// not; those of symbols and fills until it is 3.
struct Theme
{
    QColor window;
    QColor panel;
    QColor card;
    QColor hairline; ///< see-through
    QColor hover;    ///< see-through, laid over the surface under the pointer
    QColor text;
    QColor secondaryText;
    QColor accent; ///< of symbols and fills, as are green and red
    QColor green;
    QColor red;
    QColor accentText;
    QColor redText;
    QColor orangeText;
    QColor blueText;
    QColor onAccent; ///< text on the accent
    QColor track;    ///< of a switch that is off, and of what a slider has not reached
    QColor trackOutline;
    QColor button;
    QColor buttonOutline;
    bool isDark = false;
    bool isHighContrast = false; ///< text and window are about black and white

    static Theme of(const QPalette &palette);

    /// What texts stand on.
    QList<QColor> surfaces() const;
    /// What symbols stand on, too: two highlights, one over the other, where there is a button in a row.
    QColor hoveredTwice() const { return blended(hover, blended(hover, card)); }
};

/// Selections and links take the theme's accent, and tool tips its card, whatever the desktop's are.
void setAccent(QPalette &palette);

/// The palettes of this program where the desktop tells no colours of its own.
QPalette housePalette(bool isDark, bool isHighContrast);

/// Contrast ratio of two opaque colours, 1 to 21, after WCAG 2.1.
double contrastRatio(const QColor &first, const QColor &second);

} // namespace ambertide
