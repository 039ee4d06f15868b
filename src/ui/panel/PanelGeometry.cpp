#include "ui/panel/PanelGeometry.h"

#include <algorithm>
#include <array>

namespace ambertide {

namespace {

constexpr int halfIcon = 16; // kept free around a pointer on a panel of unknown thickness
/// How much further away an edge may be where a panel is known to lie: its menus and popups reach so far.
constexpr int reach = 400;

enum Edge { Top, Bottom, Left, Right };

/// Of `length` from `from`, the whole of it within [low, high] and not at their very edge, where a fractional scale
/// factor rounds it beyond; at `low` if it does not fit.
int kept(int from, int length, int low, int high, int gap)
{
    const int first = low + gap;
    const int last = high - gap - length;
    return first <= last ? std::clamp(from, first, last) : low;
}

/// On the desktop's panel, or at the top, at the end where the status icons are.
QPoint usualPlace(const QRect &screen, const QRect &available)
{
    const bool isAtFoot = available.bottom() < screen.bottom();
    return isAtFoot ? screen.bottomRight() : screen.topRight();
}

} // namespace

QPoint panelPosition(const QSize &panel, std::optional<QPoint> pointer, const QRect &screen, const QRect &available,
                     int gap)
{
    const QPoint place = pointer.value_or(usualPlace(screen, available));
    const int left = available.left();
    const int top = available.top();
    const int right = available.left() + available.width();
    const int bottom = available.top() + available.height();

    const std::array isReserved{top > screen.top(), bottom <= screen.bottom(), left > screen.left(),
                                right <= screen.right()};
    std::array distances{place.y() - screen.top(), screen.bottom() - place.y(), place.x() - screen.left(),
                         screen.right() - place.x()};
    for (std::size_t edge = 0; edge < distances.size(); ++edge)
        distances[edge] -= isReserved[edge] ? reach : 0;
    const auto edge = static_cast<Edge>(std::ranges::min_element(distances) - distances.begin());
    const bool isFree = !isReserved[edge] && pointer;

    int x = place.x() - panel.width() / 2;
    int y = place.y() - panel.height() / 2;
    switch (edge) {
    case Top:
        y = (isFree ? place.y() + halfIcon : top) + gap;
        break;
    case Bottom:
        y = (isFree ? place.y() - halfIcon : bottom) - gap - panel.height();
        break;
    case Left:
        x = (isFree ? place.x() + halfIcon : left) + gap;
        break;
    case Right:
        x = (isFree ? place.x() - halfIcon : right) - gap - panel.width();
        break;
    }
    return {kept(x, panel.width(), left, right, gap), kept(y, panel.height(), top, bottom, gap)};
}

} // namespace ambertide
