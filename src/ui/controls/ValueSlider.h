#pragma once

#include <QSlider>

namespace ambertide {

/// A plain horizontal slider whose values are whole multiples of a step; a press on it takes the thumb there.
class ValueSlider final : public QSlider
{
    Q_OBJECT

public:
    ValueSlider(int minimum, int maximum, int step);

    QSize sizeHint() const override;

Q_SIGNALS:
    /// The value, always a multiple of the step, changed.
    void steppedValueChanged(int value);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void snap(int value);

    int m_reported;
};

} // namespace ambertide
