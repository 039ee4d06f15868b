#include "ui/controls/HouseStyle.h"

#include "ui/controls/Drawing.h"
#include "ui/controls/Theme.h"

#include <QCoreApplication>
#include <QEvent>
#include <QPainter>
#include <QStyleOptionSlider>
#include <QWidget>

namespace ambertide {

namespace {

constexpr int scrollBarExtent = 10; // logical pixels, as are those below
constexpr int shortestScrollThumb = 32;
constexpr double scrollThumbInset = 2;
constexpr double restingOpacity = 0.35;
constexpr double touchedOpacity = 0.6;

const QStyleOptionSlider *scrollBar(QStyle::ComplexControl control, const QStyleOptionComplex *option)
{
    return control == QStyle::CC_ScrollBar ? qstyleoption_cast<const QStyleOptionSlider *>(option) : nullptr;
}

/// Without buttons at the ends: the groove is all there is.
QRect scrollThumb(const QStyleOptionSlider &bar)
{
    const bool isHorizontal = bar.orientation == Qt::Horizontal;
    const int groove = isHorizontal ? bar.rect.width() : bar.rect.height();
    const qint64 range = qint64(bar.maximum) - bar.minimum;
    const auto share = groove * qint64(bar.pageStep) / qMax(qint64(1), range + bar.pageStep);
    const int length = range == 0 ? groove : qMin(groove, qMax(shortestScrollThumb, static_cast<int>(share)));
    const int start =
        QStyle::sliderPositionFromValue(bar.minimum, bar.maximum, bar.sliderPosition, groove - length, bar.upsideDown);
    return isHorizontal ? QRect(bar.rect.x() + start, bar.rect.y(), length, bar.rect.height())
                        : QRect(bar.rect.x(), bar.rect.y() + start, bar.rect.width(), length);
}

} // namespace

HouseStyle::HouseStyle() : QProxyStyle(QStringLiteral("Fusion")) {}

void HouseStyle::polish(QWidget *widget)
{
    QProxyStyle::polish(widget);
    if (widget->isWindow())
        widget->installEventFilter(this);
}

void HouseStyle::unpolish(QWidget *widget)
{
    widget->removeEventFilter(this);
    QProxyStyle::unpolish(widget);
}

bool HouseStyle::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::ApplicationFontChange || event->type() == QEvent::ApplicationPaletteChange) {
        const auto controls = watched->findChildren<QWidget *>();
        for (auto *control : controls)
            QCoreApplication::sendEvent(control, event);
    }
    return QProxyStyle::eventFilter(watched, event);
}

int HouseStyle::styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                          QStyleHintReturn *returned) const
{
    switch (hint) {
    case SH_Widget_Animation_Duration:
        return m_isMotionReduced ? 0 : QProxyStyle::styleHint(hint, option, widget, returned);
    case SH_Slider_AbsoluteSetButtons:
        return Qt::LeftButton;
    case SH_TabBar_Alignment:
        return Qt::AlignCenter;
    default:
        return QProxyStyle::styleHint(hint, option, widget, returned);
    }
}

void HouseStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
                                    const QWidget *widget) const
{
    const auto *bar = scrollBar(control, option);
    if (bar == nullptr)
        return QProxyStyle::drawComplexControl(control, option, painter, widget);
    const auto theme = Theme::of(bar->palette);
    const QRectF thumb =
        QRectF(scrollThumb(*bar)).adjusted(scrollThumbInset, scrollThumbInset, -scrollThumbInset, -scrollThumbInset);
    const bool isTouched = bar->state.testFlag(State_MouseOver) || bar->state.testFlag(State_Sunken);
    QColor ink = theme.text;
    ink.setAlphaF(static_cast<float>(theme.isHighContrast ? 1 : isTouched ? touchedOpacity : restingOpacity));
    painter->save();
    painter->fillRect(bar->rect, theme.window);
    fillRounded(*painter, thumb, qMin(thumb.width(), thumb.height()) / 2, ink);
    painter->restore();
}

QRect HouseStyle::subControlRect(ComplexControl control, const QStyleOptionComplex *option, SubControl part,
                                 const QWidget *widget) const
{
    const auto *bar = scrollBar(control, option);
    if (bar == nullptr)
        return QProxyStyle::subControlRect(control, option, part, widget);
    const bool isHorizontal = bar->orientation == Qt::Horizontal;
    const QRect thumb = scrollThumb(*bar);
    QRect rest = bar->rect; // of the groove, on the side that was asked for
    switch (part) {
    case SC_ScrollBarGroove:
        return bar->rect;
    case SC_ScrollBarSlider:
        return thumb;
    case SC_ScrollBarSubPage:
        isHorizontal ? rest.setRight(thumb.left() - 1) : rest.setBottom(thumb.top() - 1);
        return rest;
    case SC_ScrollBarAddPage:
        isHorizontal ? rest.setLeft(thumb.right() + 1) : rest.setTop(thumb.bottom() + 1);
        return rest;
    default:
        return {};
    }
}

int HouseStyle::pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const
{
    switch (metric) {
    case PM_SliderLength:
    case PM_SliderControlThickness:
    case PM_SliderThickness:
        return sliderThumb;
    case PM_ScrollBarExtent:
        return scrollBarExtent;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

} // namespace ambertide
