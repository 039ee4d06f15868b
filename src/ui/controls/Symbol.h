#pragma once

#include <QColor>
#include <QLatin1String>
#include <QRectF>

class QPainter;

namespace ambertide {

/// The symbols of the windows, drawn in one stroke width on a grid of 16 by 16.
namespace symbols {
inline constexpr QLatin1String gearshape{"gearshape"};
inline constexpr QLatin1String clock{"clock"};
inline constexpr QLatin1String link{"link"};
inline constexpr QLatin1String plus{"plus"};
inline constexpr QLatin1String pencil{"pencil"};
inline constexpr QLatin1String trash{"trash"};
inline constexpr QLatin1String checkmarkCircleFill{"checkmark.circle.fill"};
inline constexpr QLatin1String chevronUp{"chevron.up"};
inline constexpr QLatin1String chevronDown{"chevron.down"};
} // namespace symbols

/// Draws a symbol into a square, in one colour. `under` is the surface, which shows in the holes of filled symbols.
void drawSymbol(QPainter &painter, const QRectF &square, QLatin1String symbol, const QColor &color,
                const QColor &under = Qt::white);

} // namespace ambertide
