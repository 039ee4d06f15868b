#include "adapters/linux/panel/LayerGeometry.h"

#include <algorithm>

namespace ambertide {

namespace {

constexpr int gap = 4;

} // namespace

LayerPosition layerPosition(const QSize &panel, std::optional<QPoint> place, const QRect &screen)
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

} // namespace ambertide
