#include "ui/controls/SwitchRow.h"

#include <QKeyEvent>
#include <QStyle>

namespace ambertide {

SwitchRow::SwitchRow(const QString &text, Kind kind) : QCheckBox(text), m_kind(kind)
{
    constexpr int throwDuration = 140; // ms
    setSizePolicy(kind == Kind::Inline ? QSizePolicy::Fixed : QSizePolicy::Expanding, QSizePolicy::Fixed);
    m_thumb.setStartValue(0.0);
    m_thumb.setEndValue(1.0);
    m_thumb.setDuration(throwDuration);
    m_thumb.setEasingCurve(QEasingCurve::InOutQuad);
    connect(&m_thumb, &QVariantAnimation::valueChanged, this, qOverload<>(&QWidget::update));
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
    if (isVisible() && style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, this) > 0) {
        m_thumb.start();
        return;
    }
    m_thumb.stop();
    m_thumb.setCurrentTime(isChecked() ? m_thumb.duration() : 0);
}

} // namespace ambertide
