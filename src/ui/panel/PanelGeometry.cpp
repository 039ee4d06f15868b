#include "ui/panel/PanelGeometry.h"

#include <algorithm>
#include <array>

namespace ambertide {

namespace {

constexpr int gap = 4;
constexpr int halfIcon = 16; // kept free around a pointer on a panel of unknown thickness

enum Edge { Top, Bottom, Left, Right };

/// Of `length` from `from`, the whole of it within [low, high] and not at their very edge, where a fractional scale
/// factor rounds it beyond; at `low` if it does not fit.
int kept(int from, int length, int low, int high)
{
    const int first = low + gap;
    const int last = high - gap - length;
    return first <= last ? std::clamp(from, first, last) : low;
}

} // namespace

QPoint panelPosition(const QSize &panel, const QPoint &pointer, const QRect &screen, const QRect &available)
{
    const int left = available.left();
    const int top = available.top();
    const int right = available.left() + available.width();
    const int bottom = available.top() + available.height();
    const int inset = available.contains(pointer) ? halfIcon : 0;

    const std::array distances{pointer.y() - screen.top(), screen.bottom() - pointer.y(), pointer.x() - screen.left(),
                               screen.right() - pointer.x()};
    auto edge = static_cast<Edge>(std::ranges::min_element(distances) - distances.begin());
    if (pointer.y() < top)
        edge = Top;
    else if (pointer.y() >= bottom)
        edge = Bottom;
    else if (pointer.x() < left)
        edge = Left;
    else if (pointer.x() >= right)
        edge = Right;

    int x = pointer.x() - panel.width() / 2;
    int y = pointer.y() - panel.height() / 2;
    switch (edge) {
    case Top:
        y = std::max(top, inset > 0 ? pointer.y() + inset : top) + gap;
        break;
    case Bottom:
        y = std::min(bottom, inset > 0 ? pointer.y() - inset : bottom) - gap - panel.height();
        break;
    case Left:
        x = std::max(left, inset > 0 ? pointer.x() + inset : left) + gap;
        break;
    case Right:
        x = std::min(right, inset > 0 ? pointer.x() - inset : right) - gap - panel.width();
        break;
    }
    return {kept(x, panel.width(), left, right), kept(y, panel.height(), top, bottom)};
}

} // namespace ambertide
