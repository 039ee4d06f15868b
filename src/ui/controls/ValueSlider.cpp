#include "ui/controls/ValueSlider.h"

#include "ui/controls/Drawing.h"
#include "ui/controls/HouseStyle.h"
#include "ui/controls/Theme.h"

#include <QPainter>
#include <QStyle>

namespace ambertide {

namespace {

constexpr double trackHeight = 4;
constexpr int preferredWidth = 160;
constexpr int ringGap = 2;
constexpr int pageSteps = 5;

} // namespace

ValueSlider::ValueSlider(int minimum, int maximum, int step) : QSlider(Qt::Horizontal), m_reported(minimum)
{
    setRange(minimum, maximum);
    setSingleStep(step);
    setPageStep(pageSteps * step);
    setAttribute(Qt::WA_Hover);
    connect(this, &QSlider::valueChanged, this, &ValueSlider::snap);
}

QSize ValueSlider::sizeHint() const { return {preferredWidth, HouseStyle::sliderThumb + 2 * ringGap}; }

void ValueSlider::snap(int value)
{
    const int stepped = qRound(static_cast<double>(value) / singleStep()) * singleStep();
    if (stepped != value)
        return setValue(stepped);
    if (m_reported == stepped)
        return;
    m_reported = stepped;
    Q_EMIT steppedValueChanged(stepped);
}

void ValueSlider::paintEvent(QPaintEvent *)
{
    const auto theme = Theme::of(palette());
    constexpr int thumb = HouseStyle::sliderThumb;
    const int left =
        ringGap + QStyle::sliderPositionFromValue(minimum(), maximum(), sliderPosition(), width() - thumb - 2 * ringGap,
                                                  invertedAppearance() != isRightToLeft());
    const QRectF track(0, (height() - trackHeight) / 2, width(), trackHeight);
    QRectF reached = track;
    if (isRightToLeft())
        reached.setLeft(left + thumb / 2.0);
    else
        reached.setRight(left + thumb / 2.0);
    QPainter painter(this);
    fillRounded(painter, track, trackHeight / 2, theme.track);
    fillRounded(painter, reached, trackHeight / 2, theme.accent);
    const QRectF disc(left, (height() - thumb) / 2.0, thumb, thumb);
    drawThumb(painter, disc, theme.isHighContrast);
    if (showsFocusRing(*this))
        drawFocusRing(painter, disc.adjusted(-ringGap, -ringGap, ringGap, ringGap), disc.width(), theme.accent);
}

} // namespace ambertide
