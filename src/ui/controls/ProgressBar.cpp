#include "ui/controls/ProgressBar.h"

namespace ambertide {

ProgressBar::ProgressBar(const QString &accessibleName)
{
    constexpr int thickness = 6; // logical pixels
    setAccessibleName(accessibleName);
    setTextVisible(false);
    setRange(0, 0);
    setFixedHeight(thickness);
    setMinimumWidth(thickness);
}

} // namespace ambertide
