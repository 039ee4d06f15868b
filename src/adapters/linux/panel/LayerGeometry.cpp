#include "adapters/linux/panel/LayerGeometry.h"

#include <algorithm>

namespace ambertide {

LayerPosition layerPosition(const QSize &panel, std::optional<QPoint> place, const QRect &screen, int gap)
{
    if (!place)
        return {Qt::TopEdge | Qt::RightEdge, {gap, gap, gap, gap}};
    const bool isLeft = place->x() < screen.center().x();
    const bool isTop = place->y() < screen.center().y();
    const int toSide = isLeft ? place->x() - screen.left() : screen.left() + screen.width() - place->x();
    const int toEnd = isTop ? place->y() - screen.top() : screen.top() + screen.height() - place->y();

    const bool isPanelHorizontal = toEnd <= toSide;
    const int x = isPanelHorizontal ? std::max(gap, toSide - panel.width() / 2) : gap;
    const int y = isPanelHorizontal ? gap : std::max(gap, toEnd - panel.height() / 2);
    return {(isTop ? Qt::TopEdge : Qt::BottomEdge) | (isLeft ? Qt::LeftEdge : Qt::RightEdge), {x, y, x, y}};
}

QPoint logicalPlace(const QPoint &place, const std::vector<ScaledScreen> &screens)
{
    for (const auto &[rectangle, deviceSize] : screens) {
        const double scale = static_cast<double>(deviceSize.width()) / rectangle.width();
        const auto scaled = (QPointF(place) / scale).toPoint();
        if (rectangle.contains(scaled))
            return scaled;
    }
    return place;
}

} // namespace ambertide
