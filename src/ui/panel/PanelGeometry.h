#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

#include <optional>

namespace ambertide {

/// Where a panel stands that was opened with a click at `pointer`: wholly within `available`, the part of `screen` that
/// the desktop's own panels leave, `gap` from the one clicked. That is the one under the pointer; or, for a click on
/// something that a panel has opened, the nearest panel; or, where nothing is known to be reserved, the nearest edge of
/// the screen. Without a pointer it stands in the corner where desktops have their status icons. Logical pixels.
QPoint panelPosition(const QSize &panel, std::optional<QPoint> pointer, const QRect &screen, const QRect &available,
                     int gap);

} // namespace ambertide
