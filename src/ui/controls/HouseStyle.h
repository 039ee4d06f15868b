#pragma once

#include <QElapsedTimer>
#include <QProxyStyle>
#include <QTimer>

#include <optional>

namespace ambertide {

/// How all windows look: draws and measures the house's controls, and leaves the rest to Fusion. It gives the controls
/// their text size, and has each hear of a change of the application's font or palette, of which Qt tells windows
/// alone. QApplication takes it over.
class HouseStyle final : public QProxyStyle
{
    Q_OBJECT

public:
    HouseStyle();

    void setMotionReduced(bool isReduced) { m_isMotionReduced = isReduced; }

    using QProxyStyle::polish;
    void polish(QWidget *widget) override;
    /// The desktop's colours, but the accent is the house's, and tool tips are as cards.
    void polish(QPalette &palette) override;

    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *returned) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &contents,
                           const QWidget *widget) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex *option, SubControl part,
                         const QWidget *widget) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override;
    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
                            const QWidget *widget) const override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    std::optional<double> sweep(const QStyleOption &busyBar) const;

    bool m_isMotionReduced = false;
    QElapsedTimer m_clock;
    QTimer *m_nextFrame; ///< of the busy bars that are on screen
};

} // namespace ambertide
