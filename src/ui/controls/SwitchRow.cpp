#include "ui/controls/SwitchRow.h"

#include "ui/controls/Drawing.h"
#include "ui/controls/TextStyle.h"
#include "ui/controls/Theme.h"

#include <QEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QSignalBlocker>
#include <QStyle>

namespace ambertide {

namespace {

constexpr int switchWidth = 32;
constexpr int switchHeight = 18;
constexpr int thumbInset = 2;
constexpr int gap = 8;
constexpr int menuPaddingX = 8;
constexpr int menuPaddingY = 6;
constexpr int formPaddingX = 14;
constexpr int formPaddingY = 10;
constexpr int inlinePadding = 4;
constexpr int throwDuration = 140; // ms

QMargins padding(SwitchRow::Kind kind)
{
    switch (kind) {
    case SwitchRow::Kind::Menu:
        return {menuPaddingX, menuPaddingY, menuPaddingX, menuPaddingY};
    case SwitchRow::Kind::Form:
        return {formPaddingX, formPaddingY, formPaddingX, formPaddingY};
    case SwitchRow::Kind::Inline:
        break;
    }
    return {inlinePadding, inlinePadding, inlinePadding, inlinePadding};
}

} // namespace

SwitchRow::SwitchRow(const QString &text, Kind kind) : QCheckBox(text), m_kind(kind)
{
    setAttribute(Qt::WA_Hover);
    setFont(textFont(TextStyle::Body));
    setSizePolicy(kind == Kind::Inline ? QSizePolicy::Fixed : QSizePolicy::Expanding, QSizePolicy::Fixed);
    m_thumb.setStartValue(0.0);
    m_thumb.setEndValue(1.0);
    m_thumb.setDuration(throwDuration);
    m_thumb.setEasingCurve(QEasingCurve::InOutQuad);
    connect(&m_thumb, &QVariantAnimation::valueChanged, this, qOverload<>(&QWidget::update));
}

QSize SwitchRow::sizeHint() const
{
    const QFontMetrics metrics(font());
    const auto margins = padding(m_kind);
    return {metrics.horizontalAdvance(text()) + gap + switchWidth + margins.left() + margins.right(),
            qMax(metrics.height(), switchHeight) + margins.top() + margins.bottom()};
}

void SwitchRow::show(bool isOn)
{
    const QSignalBlocker blocker(this);
    setChecked(isOn);
}

bool SwitchRow::event(QEvent *event)
{
    if (event->type() == QEvent::ApplicationFontChange) {
        setFont(textFont(TextStyle::Body));
        updateGeometry();
    }
    return QCheckBox::event(event);
}

void SwitchRow::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        click();
    else
        QCheckBox::keyPressEvent(event);
}

void SwitchRow::checkStateSet()
{
    QCheckBox::checkStateSet();
    moveThumb();
}

void SwitchRow::nextCheckState()
{
    QCheckBox::nextCheckState();
    moveThumb();
}

void SwitchRow::moveThumb()
{
    m_thumb.setDirection(isChecked() ? QAbstractAnimation::Forward : QAbstractAnimation::Backward);
    if (isVisible() && areAnimationsWanted(*this)) {
        m_thumb.start();
        return;
    }
    m_thumb.stop();
    m_thumb.setCurrentTime(isChecked() ? throwDuration : 0);
}

void SwitchRow::paintEvent(QPaintEvent *)
{
    const auto theme = Theme::of(palette());
    QPainter painter(this);
    const bool isHighlighted = m_kind == Kind::Menu && underMouse() && isEnabled();
    painter.setOpacity(!isEnabled() ? disabledOpacity : isHighlighted ? hoveredRowOpacity : 1);
    if (isHighlighted)
        fillRounded(painter, rect(), controlRadius, theme.hover);

    const QRect line = rect().marginsRemoved(padding(m_kind));
    const QRect place(line.right() + 1 - switchWidth, line.center().y() + 1 - switchHeight / 2, switchWidth,
                      switchHeight);
    const QRectF body = style()->visualRect(layoutDirection(), line, place);
    const double position = m_thumb.currentValue().toDouble();
    fillRounded(painter, body, switchHeight / 2.0, theme.track);
    painter.save();
    painter.setOpacity(painter.opacity() * position);
    fillRounded(painter, body, switchHeight / 2.0, isHighlighted ? theme.accentOnHover : theme.accent);
    painter.restore();
    if (theme.isHighContrast)
        strokeRounded(painter, body, switchHeight / 2.0, theme.text);
    const double size = switchHeight - 2.0 * thumbInset;
    const double travel = (switchWidth - switchHeight) * (isRightToLeft() ? 1 - position : position);
    drawThumb(painter, {body.left() + thumbInset + travel, body.top() + thumbInset, size, size}, theme.isHighContrast);

    painter.setPen(theme.text);
    painter.drawText(style()->visualRect(layoutDirection(), line, line.adjusted(0, 0, -switchWidth - gap, 0)),
                     static_cast<int>(style()->visualAlignment(layoutDirection(), Qt::AlignLeft | Qt::AlignVCenter)),
                     text());
    if (showsFocusRing(*this))
        drawFocusRing(painter, m_kind == Kind::Form ? rect().adjusted(4, 3, -4, -3) : rect(), controlRadius,
                      theme.accent);
}

} // namespace ambertide
