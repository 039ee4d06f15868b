#pragma once

#include <QColor>
#include <QPalette>

namespace ambertide {

/// The colours of the windows. Surfaces and text follow a palette; the accent is the product's amber. Accent, green,
/// orange, red, blue and secondary text are moved towards the text's end of the scale until they keep a contrast of 4.5
/// against every surface and a hovered card.
struct Theme
{
    QColor window;
    QColor panel;
    QColor card;
    QColor hairline; ///< see-through
    QColor hover;    ///< see-through, laid over the surface under the pointer
    QColor text;
    QColor secondaryText;
    QColor accent;
    QColor accentOnHover; ///< the accent where it stands on a selected tab or a hovered row of the panel
    QColor onAccent;      ///< text on the accent
    QColor track;         ///< of a switch that is off, and of what a slider has not reached
    QColor button;
    QColor buttonOutline;
    QColor green;
    QColor orange;
    QColor red;
    QColor blue;
    bool isDark = false;
    bool isHighContrast = false; ///< text and window are about black and white

    static Theme of(const QPalette &palette);
};

/// The palettes of this program where the desktop tells no colours of its own.
QPalette housePalette(bool isDark, bool isHighContrast);

/// Contrast ratio of two opaque colours, 1 to 21, after WCAG 2.1.
double contrastRatio(const QColor &first, const QColor &second);

/// `upper` laid over an opaque colour.
QColor blended(const QColor &upper, const QColor &lower);

} // namespace ambertide
