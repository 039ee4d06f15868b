#include "ui/panel/TemperatureSlider.h"

#include "ui/controls/Drawing.h"
#include "ui/controls/Theme.h"
#include "ui/panel/Color.h"

#include <QLinearGradient>
#include <QMouseEvent>
#include <QPainter>
#include <QScopedValueRollback>

#include <algorithm>
#include <cmath>
#include <utility>

namespace ambertide {

namespace {

constexpr int thumbSize = 20;
constexpr double trackHeight = 8;
constexpr double trackRadius = trackHeight / 2; // a larger one would make ellipses of the ends
constexpr int pageSteps = 5;
constexpr double ringWidth = 2.5;
constexpr double tintSize = 8; // of the coloured spot on a thumb that has the focus

} // namespace

TemperatureSlider::TemperatureSlider(double minimum, double maximum, double step)
{
    setOrientation(Qt::Horizontal);
    setSingleStep(qRound(step));
    setPageStep(pageSteps * singleStep());
    setRange(qRound(minimum), qRound(maximum));
    setFixedHeight(thumbSize + 2 * shadowRoom);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setFocusPolicy(Qt::StrongFocus);
}

void TemperatureSlider::follow(double kelvin)
{
    if (!isSliderDown())
        place(qRound(std::clamp<double>(kelvin, minimum(), maximum())));
}

void TemperatureSlider::place(int kelvin)
{
    const QScopedValueRollback placing(m_isPlacing, true);
    setValue(kelvin);
}

void TemperatureSlider::choose(int kelvin)
{
    place(kelvin);
    Q_EMIT valueChosen(kelvin);
    Q_EMIT editingChanged(true);
    Q_EMIT editingChanged(false);
}

void TemperatureSlider::sliderChange(SliderChange change)
{
    QAbstractSlider::sliderChange(change);
    if (change != SliderValueChange)
        return;
    // AT-SPI passes the value on as a bare number, so the text with the unit becomes the description.
    setAccessibleDescription(tr("%1 K", "colour temperature in kelvin, read out by a screen reader").arg(value()));
    if (!m_isPlacing)
        choose(snapped(static_cast<double>(value() - minimum()) / (maximum() - minimum())));
}

int TemperatureSlider::snapped(double fraction) const
{
    const double raw = minimum() + (maximum() - minimum()) * std::clamp(fraction, 0.0, 1.0);
    return std::clamp(singleStep() * qRound(raw / singleStep()), minimum(), maximum());
}

double TemperatureSlider::leadingDistance(const QPointF &position) const
{
    return (isRightToLeft() ? width() - position.x() : position.x()) - shadowRoom;
}

QRectF TemperatureSlider::track() const
{
    return {shadowRoom, shadowRoom + (thumbSize - trackHeight) / 2, trackLength(), trackHeight};
}

QRectF TemperatureSlider::thumb() const
{
    const double fraction = static_cast<double>(value() - minimum()) / (maximum() - minimum());
    const double travelled = (trackLength() - thumbSize) * (isRightToLeft() ? 1 - fraction : fraction);
    return {shadowRoom + travelled, shadowRoom, thumbSize, thumbSize};
}

void TemperatureSlider::drag(const QPointF &position)
{
    setSliderDown(true);
    Q_EMIT editingChanged(true);
    place(snapped(leadingDistance(position) / std::max(1.0, trackLength() - thumbSize)));
    Q_EMIT valueChosen(value());
}

void TemperatureSlider::endDrag()
{
    if (!isSliderDown())
        return;
    setSliderDown(false);
    Q_EMIT editingChanged(false);
}

void TemperatureSlider::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || isSliderDown())
        return;
    const QPointF distance = event->position() - thumb().center();
    if (std::hypot(distance.x(), distance.y()) <= thumbSize / 2.0)
        drag(event->position());
    else
        m_isTapPossible = track().contains(event->position());
}

void TemperatureSlider::mouseMoveEvent(QMouseEvent *event)
{
    if (isSliderDown())
        drag(event->position());
}

void TemperatureSlider::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    if (std::exchange(m_isTapPossible, false) && track().contains(event->position()))
        choose(snapped(leadingDistance(event->position()) / std::max(1.0, trackLength())));
    endDrag();
}

void TemperatureSlider::hideEvent(QHideEvent *event)
{
    m_isTapPossible = false;
    endDrag();
    QAbstractSlider::hideEvent(event);
}

void TemperatureSlider::wheelEvent(QWheelEvent *event)
{
    const QPoint turn = event->angleDelta();
    const int sideways = isRightToLeft() ? turn.x() : -turn.x();
    m_wheelRest += std::abs(turn.x()) > std::abs(turn.y()) ? sideways : turn.y();
    const int steps = m_wheelRest / QWheelEvent::DefaultDeltasPerStep;
    m_wheelRest -= steps * QWheelEvent::DefaultDeltasPerStep;
    setValue(value() + steps * singleStep());
    event->accept();
}

void TemperatureSlider::paintEvent(QPaintEvent *)
{
    const auto theme = Theme::of(palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF bar = track();
    QLinearGradient gradient(bar.topLeft(), bar.topRight());
    const double leading = isRightToLeft() ? 1 : 0;
    gradient.setColorAt(leading, Color::fromTemperature(minimum()));
    gradient.setColorAt(0.5, Color::fromTemperature((minimum() + maximum()) * 0.5));
    gradient.setColorAt(1 - leading, Color::fromTemperature(maximum()));
    painter.setPen(Qt::NoPen);
    painter.setBrush(gradient);
    painter.drawRoundedRect(bar, trackRadius, trackRadius);
    const QColor outline = theme.isHighContrast ? theme.text : QColor(128, 128, 128, 51);
    strokeRounded(painter, bar, trackRadius, outline);
    const QRectF disc = thumb();
    drawThumb(painter, disc, theme.isHighContrast);
    if (showsFocusRing(*this)) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(Color::fromTemperature(value()));
        painter.drawEllipse(disc.center(), tintSize / 2, tintSize / 2);
        painter.setPen(QPen(theme.accent, ringWidth));
        painter.setBrush(Qt::NoBrush);
        painter.drawEllipse(disc.adjusted(ringWidth / 2, ringWidth / 2, -ringWidth / 2, -ringWidth / 2));
    }
}

} // namespace ambertide
