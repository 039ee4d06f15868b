#include "ui/controls/ProgressBar.h"

#include "ui/controls/Drawing.h"
#include "ui/controls/Theme.h"

#include <QPainter>
#include <QPainterPath>
#include <QStyle>

#include <algorithm>

namespace ambertide {

namespace {

constexpr int thickness = 6; // logical pixels, as is the length
constexpr int usualLength = 200;
constexpr double radius = thickness / 2.0;
constexpr double sweepLength = 0.3; // of the bar
constexpr int sweepDuration = 1600; // milliseconds
constexpr double dashLength = 2.0 * thickness;

} // namespace

ProgressBar::ProgressBar(const QString &accessibleName)
{
    setAccessibleName(accessibleName);
    setTextVisible(false);
    setRange(0, 0);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    m_sweep.setStartValue(0.0);
    m_sweep.setEndValue(1.0);
    m_sweep.setDuration(sweepDuration);
    m_sweep.setLoopCount(-1);
    m_sweep.setEasingCurve(QEasingCurve::InOutSine);
    connect(&m_sweep, &QVariantAnimation::valueChanged, this, [this] {
        if (!isBusy())
            m_sweep.stop();
        update();
    });
}

QSize ProgressBar::sizeHint() const { return {usualLength, thickness}; }

QSize ProgressBar::minimumSizeHint() const { return {thickness, thickness}; }

void ProgressBar::showEvent(QShowEvent *)
{
    if (isBusy() && areAnimationsWanted(*this))
        m_sweep.start();
}

void ProgressBar::hideEvent(QHideEvent *) { m_sweep.stop(); }

void ProgressBar::paintEvent(QPaintEvent *)
{
    const auto theme = Theme::of(palette());
    QPainter painter(this);
    fillRounded(painter, rect(), radius, theme.track);
    painter.save();
    QPainterPath outline;
    outline.addRoundedRect(rect(), radius, radius);
    painter.setClipPath(outline);
    if (layoutDirection() == Qt::RightToLeft) {
        painter.translate(width(), 0);
        painter.scale(-1, 1);
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.accent);
    isBusy() ? paintBusy(painter) : paintReached(painter);
    painter.restore();
    if (theme.isHighContrast)
        strokeRounded(painter, rect(), radius, theme.hairline);
}

void ProgressBar::paintBusy(QPainter &painter) const
{
    if (m_sweep.state() == QAbstractAnimation::Running) {
        const double length = sweepLength * width();
        const double start = m_sweep.currentValue().toDouble() * (width() + length) - length;
        painter.drawRoundedRect(QRectF(start, 0, length, height()), radius, radius);
        return;
    }
    for (double start = dashLength / 2; start < width(); start += 2 * dashLength)
        painter.drawRoundedRect(QRectF(start, 0, dashLength, height()), radius, radius);
}

void ProgressBar::paintReached(QPainter &painter) const
{
    const double share = (std::max(value(), minimum()) - minimum()) / static_cast<double>(maximum() - minimum());
    painter.drawRoundedRect(QRectF(0, 0, share * width(), height()), radius, radius);
}

} // namespace ambertide
