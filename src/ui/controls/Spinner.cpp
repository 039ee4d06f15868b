#include "ui/controls/Spinner.h"

#include "ui/controls/Drawing.h"
#include "ui/controls/Theme.h"

#include <QPainter>

#include <chrono>

namespace ambertide {

using namespace std::chrono_literals;

namespace {

constexpr int side = 16;
constexpr int spokes = 12;
constexpr double innerRadius = 3.6;
constexpr double outerRadius = 7;

} // namespace

Spinner::Spinner(const QString &accessibleName)
{
    setAccessibleName(accessibleName);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    m_turn.setInterval(80ms);
    connect(&m_turn, &QTimer::timeout, this, [this] {
        m_position = (m_position + 1) % spokes;
        update();
    });
}

QSize Spinner::sizeHint() const { return {side, side}; }

void Spinner::showEvent(QShowEvent *)
{
    if (areAnimationsWanted(*this))
        m_turn.start();
}

void Spinner::hideEvent(QHideEvent *) { m_turn.stop(); }

void Spinner::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(width() / 2.0, height() / 2.0);
    QColor ink = Theme::of(palette()).secondaryText;
    for (int spoke = 0; spoke < spokes; ++spoke) {
        const int age = (m_position - spoke + spokes) % spokes;
        ink.setAlphaF(1 - 0.075F * static_cast<float>(age));
        painter.setPen(QPen(ink, 1.5, Qt::SolidLine, Qt::RoundCap));
        painter.save();
        painter.rotate(360.0 / spokes * spoke);
        painter.drawLine(QPointF(0, -innerRadius), QPointF(0, -outerRadius));
        painter.restore();
    }
}

} // namespace ambertide
