#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

namespace ambertide {

/// Where a panel stands that was opened with a click at `pointer`: wholly within `available`, the part of `screen` that
/// the desktop's own panels leave, beside the one clicked. Where nothing is known to be reserved at the pointer, the
/// nearest edge of the screen is taken for the desktop's panel. Logical pixels.
QPoint panelPosition(const QSize &panel, const QPoint &pointer, const QRect &screen, const QRect &available);

} // namespace ambertide
