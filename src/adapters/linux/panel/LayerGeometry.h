#pragma once

#include <QMargins>
#include <QPoint>
#include <QRect>
#include <QSize>

#include <optional>

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
/// Logical pixels.
LayerPosition layerPosition(const QSize &panel, std::optional<QPoint> place, const QRect &screen);

} // namespace ambertide
