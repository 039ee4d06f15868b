#pragma once

#include <QAbstractSlider>

namespace ambertide {

/// A slider for a colour temperature in kelvin, on a track of the colours that the temperatures stand for. Every value
/// that it chooses is a multiple of its step within its bounds. Main thread.
///
/// A tap on the track maps the whole width to the range; a drag on the thumb maps the width less the thumb's, measured
/// from the leading edge. Keys, wheel and assistive technology count as taps.
class TemperatureSlider final : public QAbstractSlider
{
    Q_OBJECT

public:
    /// Logical pixels on every side of the slider itself, for its thumb's shadow.
    static constexpr int shadowRoom = 3;

    TemperatureSlider(double minimum, double maximum, double step);

    /// Shows the owner's temperature. During a drag the thumb stays with the pointer.
    void follow(double kelvin);

Q_SIGNALS:
    /// The user has chosen this value, which the owner is to adopt.
    void valueChosen(double kelvin);
    /// True at each movement of a drag and at a tap, false at the end of a drag and after a tap.
    void editingChanged(bool isEditing);

protected:
    void sliderChange(SliderChange change) override;
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    int snapped(double fraction) const;
    // The next four leave the room for the shadow out.
    double trackLength() const { return width() - 2.0 * shadowRoom; }
    double leadingDistance(const QPointF &position) const;
    QRectF track() const;
    QRectF thumb() const;
    void place(int kelvin);
    void choose(int kelvin);
    void drag(const QPointF &position);
    void endDrag();

    bool m_isPlacing = false; ///< the value is being set by place(), not by a key, the wheel or assistive technology
    bool m_isTapPossible = false;
    int m_wheelRest = 0; ///< turns of the wheel that do not make a step yet, in eighths of a degree
};

} // namespace ambertide
