#include "ui/controls/IconTabBar.h"

#include "ui/controls/Drawing.h"
#include "ui/controls/Symbol.h"
#include "ui/controls/TextStyle.h"
#include "ui/controls/Theme.h"

#include <QEvent>
#include <QPainter>

namespace ambertide {

namespace {

constexpr int symbolSize = 20;
constexpr int symbolGap = 3;
constexpr int paddingX = 14;
constexpr int paddingY = 6;
constexpr int gap = 4; // between two tabs
constexpr double cornerRadius = 8;

} // namespace

IconTabBar::IconTabBar()
{
    setDrawBase(false);
    setExpanding(false);
    setUsesScrollButtons(false);
    setAttribute(Qt::WA_Hover);
    setMouseTracking(true);
    setFont(textFont(TextStyle::Subheadline));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void IconTabBar::addTab(QLatin1String symbol, const QString &text)
{
    m_symbols.push_back(symbol);
    QTabBar::addTab(text);
}

bool IconTabBar::event(QEvent *event)
{
    if (event->type() == QEvent::ApplicationFontChange)
        setFont(textFont(TextStyle::Subheadline));
    return QTabBar::event(event);
}

QSize IconTabBar::tabSizeHint(int index) const
{
    const QFontMetrics metrics(font());
    return {qMax(metrics.horizontalAdvance(tabText(index)), symbolSize) + 2 * paddingX + gap,
            symbolSize + symbolGap + metrics.height() + 2 * paddingY};
}

void IconTabBar::paintEvent(QPaintEvent *)
{
    const auto theme = Theme::of(palette());
    QPainter painter(this);
    const QPoint pointer = mapFromGlobal(QCursor::pos());
    for (int index = 0; index < count(); ++index) {
        const QRect shape = tabRect(index).adjusted(gap / 2, 0, -gap / 2, 0);
        const bool isCurrent = index == currentIndex();
        const bool isHovered = underMouse() && shape.contains(pointer);
        if (isCurrent || isHovered)
            fillRounded(painter, shape, cornerRadius, theme.hover);
        const QColor ink = isCurrent ? theme.accentOnHover : isHovered ? theme.text : theme.secondaryText;
        const QRect square(shape.center().x() + 1 - symbolSize / 2, shape.top() + paddingY, symbolSize, symbolSize);
        drawSymbol(painter, square, m_symbols.at(static_cast<std::size_t>(index)), ink);
        painter.setPen(ink);
        painter.drawText(shape.adjusted(0, paddingY + symbolSize + symbolGap, 0, -paddingY), Qt::AlignCenter,
                         tabText(index));
        if (isCurrent && theme.isHighContrast)
            strokeRounded(painter, shape, cornerRadius, theme.text);
        if (isCurrent && showsFocusRing(*this))
            drawFocusRing(painter, shape, cornerRadius, theme.accent);
    }
}

} // namespace ambertide
