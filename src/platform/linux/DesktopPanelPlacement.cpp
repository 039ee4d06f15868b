#include "platform/linux/DesktopPanelPlacement.h"

#include "platform/linux/ToolkitConnection.h"
#include "platform/linux/randr/XcbReply.h"

#include <QGuiApplication>

#include <xcb/xcb.h>

#include <string>

namespace ambertide {

namespace {

bool isWayland() { return QGuiApplication::platformName().startsWith(QLatin1String("wayland")); }

/// EWMH: a compositing manager owns this selection.
bool hasCompositor(xcb_connection_t *connection)
{
    const std::string name = "_NET_WM_CM_S0";
    const auto atom = owned(xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.c_str()), nullptr));
    if (!atom)
        return false;
    const auto owner =
        owned(xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, atom->atom), nullptr));
    return owner && owner->owner != XCB_WINDOW_NONE;
}

} // namespace

PanelPlacement::Manner DesktopPanelPlacement::manner() const { return isWayland() ? Manner::Window : Manner::Popup; }

bool DesktopPanelPlacement::hasTransparency() const
{
    if (isWayland())
        return true;
    auto *connection = toolkitConnection();
    return connection != nullptr && hasCompositor(connection);
}

void DesktopPanelPlacement::anchor(QWindow &) {}

} // namespace ambertide
