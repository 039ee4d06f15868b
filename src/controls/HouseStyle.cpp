#include "controls/HouseStyle.h"

namespace ambertide {

HouseStyle::HouseStyle() : QProxyStyle(QStringLiteral("Fusion")) {}

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

int HouseStyle::pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const
{
    switch (metric) {
    case PM_SliderLength:
    case PM_SliderControlThickness:
    case PM_SliderThickness:
        return sliderThumb;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

} // namespace ambertide
