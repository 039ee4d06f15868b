#include "controls/ScrollBar.h"

#include "controls/Drawing.h"
#include "controls/Theme.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOptionSlider>

namespace ambertide {

namespace {

constexpr int breadth = 12; // logical pixels, with the space around the handle
constexpr double handleBreadth = 6;
constexpr double handleBreadthUnderPointer = 8;

} // namespace

ScrollBar::ScrollBar() : QScrollBar(Qt::Vertical) { setAttribute(Qt::WA_Hover); }

QSize ScrollBar::sizeHint() const { return {breadth, QScrollBar::sizeHint().height()}; }

void ScrollBar::paintEvent(QPaintEvent *)
{
    QStyleOptionSlider option;
    initStyleOption(&option);
    const QRectF place =
        style()->subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSlider, this).intersected(rect());
    const auto theme = Theme::of(palette());
    const double handle = isSliderDown() || underMouse() ? handleBreadthUnderPointer : handleBreadth;
    const double margin = (width() - handle) / 2;
    QColor ink = theme.text;
    if (!theme.isHighContrast)
        ink.setAlphaF(isSliderDown() ? 0.6F : 0.4F);
    QPainter painter(this);
    fillRounded(painter, place.adjusted(margin, 0, -margin, 0), handle / 2, ink);
}

} // namespace ambertide
