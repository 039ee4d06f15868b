#pragma once

#include <QAccessibleWidget>

namespace ambertide {

class TemperatureSlider;

/// What assistive technology sees of a TemperatureSlider. Setting its value counts as a tap.
class AccessibleTemperatureSlider final : public QAccessibleWidget, public QAccessibleValueInterface
{
public:
    /// Makes the sliders known to the toolkit; further calls do nothing.
    static void install();
    static void announceValue(TemperatureSlider &slider);

    explicit AccessibleTemperatureSlider(TemperatureSlider &slider);

    void *interface_cast(QAccessible::InterfaceType type) override;
    QString text(QAccessible::Text kind) const override;

    QVariant currentValue() const override;
    void setCurrentValue(const QVariant &value) override;
    QVariant minimumValue() const override;
    QVariant maximumValue() const override;
    QVariant minimumStepSize() const override;

private:
    TemperatureSlider &m_slider;
};

} // namespace ambertide
