#pragma once

#include <QRect>
#include <QWidget>

namespace ambertide {

/// Where on its screen a window can be, its frame included. Wayland tells neither what the desktop's panels take nor
/// how high a title bar is: there it is less by as much as these usually are.
QRect roomOnScreen(const QWidget &window);

} // namespace ambertide
