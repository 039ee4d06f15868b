#pragma once

#include <QColor>
#include <QLatin1String>
#include <QMargins>
#include <QRectF>

class QPainter;
class QWidget;

namespace ambertide {

/// Corners of buttons, fields and highlighted rows, in logical pixels.
inline constexpr double controlRadius = 6;
/// The two buttons at the end of a field, in logical pixels. The chevrons themselves grow with the text.
inline constexpr int fieldChevron = 9;
inline constexpr int fieldChevronPadding = 6;
inline constexpr int fieldEndPadding = 3;

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

/// Draws a symbol into a square, in one colour.
void drawSymbol(QPainter &painter, const QRectF &square, QLatin1String symbol, const QColor &color);

/// Whether a control has the focus while its window is used with the keyboard.
bool showsFocusRing(const QWidget &control);
/// Two pixels wide, just inside `outline`.
void drawFocusRing(QPainter &painter, const QRectF &outline, double radius, const QColor &color);

void fillRounded(QPainter &painter, const QRectF &shape, double radius, const QColor &fill);
/// The width of one device pixel in logical pixels, at whatever scale is drawn.
double hairlineWidth(const QPainter &painter);
/// `shape` moved to whole device pixels, so that its edges are sharp.
QRectF onPixels(const QPainter &painter, const QRectF &shape);
/// A hairline just inside `shape`.
void strokeRounded(QPainter &painter, const QRectF &shape, double radius, const QColor &stroke);

/// How far the soft shadow of a surface reaches: further below than above.
inline constexpr QMargins shadowMargins(20, 14, 20, 26);
void drawShadow(QPainter &painter, const QRectF &surface, double radius, bool isDark);

/// A white disc with a soft shadow.
void drawThumb(QPainter &painter, const QRectF &disc, bool isOutlined);

} // namespace ambertide
