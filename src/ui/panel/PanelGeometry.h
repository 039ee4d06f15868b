#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

#include <optional>

namespace ambertide {

/// Where to put a panel that was opened by a click at `pointer`: wholly within `available`, the part of `screen` that
/// the desktop's own panels leave free, and `gap` away from the panel that was clicked. That is the one under the
/// pointer; for a click on something that a panel has opened, the nearest panel; where no panel is known, the nearest
/// edge of the screen. Without a pointer, in the corner where desktops have their status icons. Logical pixels.
QPoint panelPosition(const QSize &panel, std::optional<QPoint> pointer, const QRect &screen, const QRect &available,
                     int gap);

} // namespace ambertide
