#include "ui/controls/ScreenRoom.h"

#include <QGuiApplication>
#include <QScreen>

namespace ambertide {

QRect roomOnScreen(const QWidget &window)
{
    constexpr int panelsAndTitleBar = 96; // logical pixels
    auto room = window.screen()->availableGeometry();
    if (QGuiApplication::platformName().startsWith(QLatin1String("wayland")))
        room.setHeight(room.height() - panelsAndTitleBar);
    return room;
}

} // namespace ambertide
