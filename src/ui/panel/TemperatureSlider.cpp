#include "ui/panel/TemperatureSlider.h"

#include "ui/controls/Drawing.h"
#include "ui/controls/Theme.h"
#include "ui/panel/AccessibleTemperatureSlider.h"
#include "ui/panel/Color.h"

#include <QLinearGradient>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <utility>

namespace ambertide {

namespace {

constexpr int thumbSize = 20;
constexpr double trackHeight = 8;
constexpr double trackRadius = trackHeight / 2; // a larger one would make ellipses of the ends
constexpr int preferredWidth = 268;
constexpr double pageSteps = 5;
constexpr double ringWidth = 2.5;
constexpr double tintSize = 8; // of the spot that a thumb with the focus shows

} // namespace

TemperatureSlider::TemperatureSlider(double value, const Range &range)
    : m_range(range), m_value(value), m_localValue(value)
{
    AccessibleTemperatureSlider::install();
    setFixedHeight(thumbSize + shadowRoom);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setFocusPolicy(Qt::StrongFocus);
}

QSize TemperatureSlider::sizeHint() const { return {preferredWidth, thumbSize + shadowRoom}; }

QString TemperatureSlider::spokenValue() const
{
    return tr("%1 K", "colour temperature in kelvin, read out by a screen reader").arg(qRound(m_localValue));
}

void TemperatureSlider::setValue(double value)
{
    m_value = value;
    if (!m_isDragging)
        setLocalValue(value);
}

void TemperatureSlider::setLocalValue(double value)
{
    if (std::exchange(m_localValue, value) == value)
        return;
    update();
    AccessibleTemperatureSlider::announceValue(*this);
}

double TemperatureSlider::snapped(double fraction) const
{
    const double raw = m_range.minValue + (m_range.maxValue - m_range.minValue) * std::clamp(fraction, 0.0, 1.0);
    return std::max(std::min(m_range.step * std::round(raw / m_range.step), m_range.maxValue), m_range.minValue);
}

double TemperatureSlider::leadingDistance(const QPointF &position) const
{
    return isRightToLeft() ? width() - position.x() : position.x();
}

QRectF TemperatureSlider::track() const
{
    return {0, (thumbSize - trackHeight) / 2, static_cast<double>(width()), trackHeight};
}

QRectF TemperatureSlider::thumb() const
{
    const double fraction =
        std::clamp((m_localValue - m_range.minValue) / (m_range.maxValue - m_range.minValue), 0.0, 1.0);
    const double travel = width() - thumbSize;
    return {travel * (isRightToLeft() ? 1 - fraction : fraction), 0, thumbSize, thumbSize};
}

void TemperatureSlider::choose(double value)
{
    const double chosen = snapped((value - m_range.minValue) / (m_range.maxValue - m_range.minValue));
    setLocalValue(chosen);
    Q_EMIT valueChosen(chosen);
    Q_EMIT editingChanged(true);
    Q_EMIT editingChanged(false);
}

void TemperatureSlider::drag(const QPointF &position)
{
    m_isDragging = true;
    Q_EMIT editingChanged(true);
    const double chosen = snapped(leadingDistance(position) / std::max(1, width() - thumbSize));
    setLocalValue(chosen);
    Q_EMIT valueChosen(chosen);
}

void TemperatureSlider::endDrag()
{
    if (!std::exchange(m_isDragging, false))
        return;
    Q_EMIT editingChanged(false);
}

void TemperatureSlider::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || m_isDragging)
        return;
    const QPointF distance = event->position() - thumb().center();
    if (std::hypot(distance.x(), distance.y()) <= thumbSize / 2.0)
        drag(event->position());
    else
        m_isTapPossible = track().contains(event->position());
}

void TemperatureSlider::mouseMoveEvent(QMouseEvent *event)
{
    if (m_isDragging)
        drag(event->position());
}

void TemperatureSlider::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    if (std::exchange(m_isTapPossible, false) && track().contains(event->position())) {
        const double range = m_range.maxValue - m_range.minValue;
        choose(m_range.minValue + range * leadingDistance(event->position()) / std::max(1, width()));
    }
    endDrag();
}

void TemperatureSlider::hideEvent(QHideEvent *event)
{
    m_isTapPossible = false;
    endDrag();
    QWidget::hideEvent(event);
}

void TemperatureSlider::keyPressEvent(QKeyEvent *event)
{
    const double towardsRight = isRightToLeft() ? -1 : 1;
    switch (event->key()) {
    case Qt::Key_Right:
        return stepBy(towardsRight);
    case Qt::Key_Left:
        return stepBy(-towardsRight);
    case Qt::Key_Up:
        return stepBy(1);
    case Qt::Key_Down:
        return stepBy(-1);
    case Qt::Key_PageUp:
        return stepBy(pageSteps);
    case Qt::Key_PageDown:
        return stepBy(-pageSteps);
    case Qt::Key_Home:
        return choose(m_range.minValue);
    case Qt::Key_End:
        return choose(m_range.maxValue);
    default:
        QWidget::keyPressEvent(event);
    }
}

void TemperatureSlider::wheelEvent(QWheelEvent *event)
{
    const QPoint turn = event->angleDelta();
    const int sideways = isRightToLeft() ? turn.x() : -turn.x();
    m_wheelRest += std::abs(turn.x()) > std::abs(turn.y()) ? sideways : turn.y();
    const int steps = m_wheelRest / QWheelEvent::DefaultDeltasPerStep;
    m_wheelRest -= steps * QWheelEvent::DefaultDeltasPerStep;
    if (steps != 0)
        stepBy(steps);
    event->accept();
}

void TemperatureSlider::stepBy(double steps)
{
    if (!m_isDragging)
        choose(m_localValue + steps * m_range.step);
}

void TemperatureSlider::paintEvent(QPaintEvent *)
{
    const auto theme = Theme::of(palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF bar = track();
    QLinearGradient gradient(bar.topLeft(), bar.topRight());
    const double leading = isRightToLeft() ? 1 : 0;
    gradient.setColorAt(leading, Color::fromTemperature(m_range.minValue));
    gradient.setColorAt(0.5, Color::fromTemperature((m_range.minValue + m_range.maxValue) * 0.5));
    gradient.setColorAt(1 - leading, Color::fromTemperature(m_range.maxValue));
    painter.setPen(Qt::NoPen);
    painter.setBrush(gradient);
    painter.drawRoundedRect(bar, trackRadius, trackRadius);
    const QColor outline = theme.isHighContrast ? theme.text : QColor(128, 128, 128, 51);
    strokeRounded(painter, bar, trackRadius, outline);
    const QRectF disc = thumb();
    drawThumb(painter, disc, theme.isHighContrast);
    if (showsFocusRing(*this)) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(palette().color(QPalette::Highlight));
        painter.drawEllipse(disc.center(), tintSize / 2, tintSize / 2);
        painter.setPen(QPen(theme.accent, ringWidth));
        painter.setBrush(Qt::NoBrush);
        painter.drawEllipse(disc.adjusted(ringWidth / 2, ringWidth / 2, -ringWidth / 2, -ringWidth / 2));
    }
}

} // namespace ambertide
