#include "ui/controls/Divider.h"

#include "ui/controls/Theme.h"

#include <QPainter>

namespace ambertide {

Divider::Divider()
{
    setFixedHeight(1);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void Divider::paintEvent(QPaintEvent *) { QPainter(this).fillRect(rect(), Theme::of(palette()).hairline); }

} // namespace ambertide
