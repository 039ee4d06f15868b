#include "ui/panel/AccessibleTemperatureSlider.h"

#include "ui/panel/TemperatureSlider.h"

#include <cmath>

namespace ambertide {

namespace {

QAccessibleInterface *create(const QString &, QObject *object)
{
    auto *slider = qobject_cast<TemperatureSlider *>(object);
    return slider != nullptr ? new AccessibleTemperatureSlider(*slider) : nullptr;
}

} // namespace

void AccessibleTemperatureSlider::install()
{
    static const bool isInstalled = (QAccessible::installFactory(create), true);
    Q_UNUSED(isInstalled)
}

void AccessibleTemperatureSlider::announceValue(TemperatureSlider &slider)
{
    QAccessibleValueChangeEvent valueChanged(&slider, slider.localValue());
    QAccessible::updateAccessibility(&valueChanged);
    QAccessibleEvent spokenValueChanged(&slider, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&spokenValueChanged);
}

AccessibleTemperatureSlider::AccessibleTemperatureSlider(TemperatureSlider &slider)
    : QAccessibleWidget(&slider, QAccessible::Slider), m_slider(slider)
{
}

void *AccessibleTemperatureSlider::interface_cast(QAccessible::InterfaceType type)
{
    if (type == QAccessible::ValueInterface)
        return static_cast<QAccessibleValueInterface *>(this);
    return QAccessibleWidget::interface_cast(type);
}

QString AccessibleTemperatureSlider::text(QAccessible::Text kind) const
{
    // AT-SPI passes on a number as the value; the words with the unit go the way of the description.
    if (kind == QAccessible::Value || kind == QAccessible::Description)
        return m_slider.spokenValue();
    return QAccessibleWidget::text(kind);
}

QVariant AccessibleTemperatureSlider::currentValue() const { return m_slider.localValue(); }

void AccessibleTemperatureSlider::setCurrentValue(const QVariant &value)
{
    if (const double kelvin = value.toDouble(); std::isfinite(kelvin))
        m_slider.choose(kelvin);
}

QVariant AccessibleTemperatureSlider::minimumValue() const { return m_slider.range().minValue; }

QVariant AccessibleTemperatureSlider::maximumValue() const { return m_slider.range().maxValue; }

QVariant AccessibleTemperatureSlider::minimumStepSize() const { return m_slider.range().step; }

} // namespace ambertide
