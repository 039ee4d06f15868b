#pragma once

#include <QColor>
#include <QRectF>

class QPainter;
class QWidget;

namespace ambertide {

/// Corners of buttons, fields and highlighted rows, in logical pixels.
inline constexpr double controlRadius = 6;
inline constexpr double hoveredRowOpacity = 0.9;
inline constexpr double disabledOpacity = 0.45;

/// Whether a control has the focus and the keyboard is what its window is used with.
bool showsFocusRing(const QWidget &control);
/// Two pixels wide, just inside `outline`.
void drawFocusRing(QPainter &painter, const QRectF &outline, double radius, const QColor &color);

void fillRounded(QPainter &painter, const QRectF &shape, double radius, const QColor &fill);
/// One pixel wide, just inside `shape`.
void strokeRounded(QPainter &painter, const QRectF &shape, double radius, const QColor &stroke);

/// A white disc with a soft shadow.
void drawThumb(QPainter &painter, const QRectF &disc, bool isOutlined);

/// Whether things may move by themselves.
bool areAnimationsWanted(const QWidget &control);

} // namespace ambertide
