#pragma once

#include <QProxyStyle>

namespace ambertide {

/// The style under the controls: Fusion, with their sizes, slim scroll bars and the wish for less motion. It also has
/// every control hear of a change of the application's font or palette, of which Qt tells windows alone. QApplication
/// takes it over.
class HouseStyle final : public QProxyStyle
{
    Q_OBJECT

public:
    static constexpr int sliderThumb = 18; ///< logical pixels

    HouseStyle();

    void setMotionReduced(bool isReduced) { m_isMotionReduced = isReduced; }

    using QProxyStyle::polish;
    using QProxyStyle::unpolish;
    void polish(QWidget *widget) override;
    void unpolish(QWidget *widget) override;

    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *returned) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
                            const QWidget *widget) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex *option, SubControl part,
                         const QWidget *widget) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool m_isMotionReduced = false;
};

} // namespace ambertide
