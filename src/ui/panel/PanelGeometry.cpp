#include "ui/panel/PanelGeometry.h"

#include <algorithm>
#include <array>

namespace ambertide {

namespace {

// Logical pixels.
constexpr int halfIcon = 16; // kept free around a pointer on a panel of unknown thickness
constexpr int reach = 400;   // of a panel's menus: an edge with a panel may be so much further away than one without

enum Edge { Top, Bottom, Left, Right };

/// Where `length` has to begin, as near to `from` as possible, to lie within [low, high] and `gap` away from either: at
/// the very edge a fractional scale factor would round it beyond. `low` if it does not fit.
int kept(int from, int length, int low, int high, int gap)
{
    const int first = low + gap;
    const int last = high - gap - length;
    return first <= last ? std::clamp(from, first, last) : low;
}

/// The corner where status icons usually are: at the bottom if a panel is known to be there, else at the top.
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
