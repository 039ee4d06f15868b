#pragma once

#include <QGuiApplication>

struct xcb_connection_t;

namespace ambertide {

/// The toolkit's connection to the X server; null where it does not draw on one. Main thread.
inline xcb_connection_t *toolkitConnection()
{
    // The toolkit names an interface to X11 on other platforms as well, without a connection behind it.
    const auto *x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 != nullptr && QGuiApplication::platformName() == QLatin1String("xcb") ? x11->connection() : nullptr;
}

} // namespace ambertide
