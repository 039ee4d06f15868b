#pragma once

#include <QElapsedTimer>
#include <QProxyStyle>
#include <QTimer>

#include <optional>

namespace ambertide {

/// How all windows look: draws and measures our own controls, and leaves the rest to Fusion. It sets the size of the
/// controls' text, and passes changes of the application's font and palette on to them, since Qt tells only windows.
/// QApplication takes ownership of it.
class HouseStyle final : public QProxyStyle
{
    Q_OBJECT

public:
    HouseStyle();

    void setMotionReduced(bool isReduced) { m_isMotionReduced = isReduced; }

    using QProxyStyle::polish;
    void polish(QWidget *widget) override;
    /// Leaves the desktop's colours as they are, but for our own accent and the colours of cards for tool tips.
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
