#pragma once

#include <QWidget>

namespace ambertide {

/// A slider for a colour temperature in kelvin, on a track of the colours that the temperatures stand for. Every value
/// that it chooses is a multiple of its step within its bounds. Main thread.
///
/// A tap on the track maps the whole width to the range; a drag on the thumb maps the width less the thumb's, measured
/// from the leading edge. Keys and wheel step by one or five and count as taps.
class TemperatureSlider final : public QWidget
{
    Q_OBJECT

public:
    struct Range
    {
        double minValue;
        double maxValue;
        double step;
    };

    /// Logical pixels below the slider's 20 that its thumb's shadow falls on.
    static constexpr int shadowRoom = 3;

    TemperatureSlider(double value, const Range &range);

    /// The value that the slider edits, which its owner holds.
    double value() const { return m_value; }
    /// The owner's value has changed. During a drag the thumb stays with the pointer.
    void setValue(double value);
    /// Chooses a value as a tap would.
    void choose(double value);

    /// Where the thumb is drawn; differs from value() during a drag only.
    double localValue() const { return m_localValue; }
    const Range &range() const { return m_range; }
    /// What is read out: "3400 K".
    QString spokenValue() const;

    QSize sizeHint() const override;

Q_SIGNALS:
    /// The owner is to take this value over.
    void valueChosen(double value);
    /// True at each movement of a drag and at a tap, false at the end of a drag and after a tap.
    void editingChanged(bool isEditing);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    double snapped(double fraction) const;
    double leadingDistance(const QPointF &position) const;
    QRectF track() const;
    QRectF thumb() const;
    void drag(const QPointF &position);
    void endDrag();
    void stepBy(double steps);
    void setLocalValue(double value);

    Range m_range;
    double m_value;
    double m_localValue;
    bool m_isDragging = false;
    bool m_isTapPossible = false;
    int m_wheelRest = 0; ///< eighths of a degree that have not made a step yet
};

} // namespace ambertide
