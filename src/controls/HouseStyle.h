#pragma once

#include <QProxyStyle>

namespace ambertide {

/// The style under the controls: Fusion, with their sizes, slim scroll bars
/// and the wish for less motion. QApplication takes it over.
class HouseStyle final : public QProxyStyle
{
    Q_OBJECT

public:
    static constexpr int sliderThumb = 18; ///< logical pixels

    HouseStyle();

    void setMotionReduced(bool isReduced) { m_isMotionReduced = isReduced; }

    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *returned) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
                            const QWidget *widget) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex *option, SubControl part,
                         const QWidget *widget) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const override;

private:
    bool m_isMotionReduced = false;
};

} // namespace ambertide
