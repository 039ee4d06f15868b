#pragma once

#include <QGuiApplication>

struct xcb_connection_t;

namespace ambertide {

/// The toolkit's connection to the X server; null where the toolkit does not use one. Main thread.
inline xcb_connection_t *toolkitConnection()
{
    // The toolkit offers this interface on other platforms as well, but without a connection.
    const auto *x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 != nullptr && QGuiApplication::platformName() == QLatin1String("xcb") ? x11->connection() : nullptr;
}

} // namespace ambertide
