#pragma once

#include <QMargins>
#include <QPoint>
#include <QRect>
#include <QSize>

#include <optional>
#include <utility>
#include <vector>

namespace ambertide {

/// How a window is anchored on a screen: at two edges that meet, with these margins to them.
struct LayerPosition
{
    Qt::Edges edges;
    QMargins margins;

    bool operator==(const LayerPosition &) const = default;
};

/// Beside an icon at `place` on `screen`: against the edge at which the desktop's panel with the icon lies, which the
/// compositor keeps free, and centred along it, but wholly on the screen. The top right corner for an unknown place.
/// Logical pixels, also `gap`, which is kept to the edges.
LayerPosition layerPosition(const QSize &panel, std::optional<QPoint> place, const QRect &screen, int gap);

/// A screen's rectangle in logical pixels, and its size in device pixels.
using ScaledScreen = std::pair<QRect, QSize>;

/// For a place in device pixels, counted from the origin of all screens by the scale of the screen that it is on. The
/// place itself where it is on none of them.
QPoint logicalPlace(const QPoint &place, const std::vector<ScaledScreen> &screens);

} // namespace ambertide
