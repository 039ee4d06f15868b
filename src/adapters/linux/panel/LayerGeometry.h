#pragma once

#include <QMargins>
#include <QPoint>
#include <QRect>
#include <QSize>

#include <optional>
#include <utility>
#include <vector>

namespace ambertide {

/// How a window is anchored on a screen: at two adjacent edges, with these margins to them.
struct LayerPosition
{
    Qt::Edges edges;
    QMargins margins;

    bool operator==(const LayerPosition &) const = default;
};

/// The position of a panel beside an icon at `place` on `screen`: at the edge where the desktop's own panel with the
/// icon is, which the compositor keeps clear, and centred on the icon along that edge, but wholly on the screen. The
/// top right corner when the place is unknown. All in logical pixels; `gap` is the distance to keep from the edges.
LayerPosition layerPosition(const QSize &panel, std::optional<QPoint> place, const QRect &screen, int gap);

/// A screen's rectangle in logical pixels, and its size in device pixels.
using ScaledScreen = std::pair<QRect, QSize>;

/// Converts a place from device pixels, counted from the origin of all screens at the scale of the screen that it is
/// on. Returns the place itself when it is on none of them.
QPoint logicalPlace(const QPoint &place, const std::vector<ScaledScreen> &screens);

} // namespace ambertide
