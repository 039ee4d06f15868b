#include "adapters/linux/panel/DesktopPanelPlacement.h"

#include "adapters/linux/panel/LayerShell.h"
#include "adapters/linux/x11/Selection.h"
#include "adapters/linux/x11/ToolkitConnection.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWindow>

namespace ambertide {

namespace {

bool isWayland() { return QGuiApplication::platformName().startsWith(QLatin1String("wayland")); }

bool isPlasma()
{
    // A colon-separated list.
    return qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':').contains(QLatin1String("KDE"));
}

/// Plasma tells the place of a click in device pixels.
QPoint logicalPlaceOnPlasma(const QPoint &place)
{
    const auto sizes = layer_shell::deviceSizes();
    std::vector<ScaledScreen> screens;
    const auto known = QGuiApplication::screens();
    for (const auto *screen : known) {
        if (const auto size = sizes.find(screen->name()); size != sizes.end())
            screens.emplace_back(screen->geometry(), size->second);
    }
    return logicalPlace(place, screens);
}

} // namespace

PanelPlacement::Manner DesktopPanelPlacement::manner() const
{
    if (isWayland())
        return layer_shell::isOffered() ? Manner::Layer : Manner::Window;
    // Xwayland knows neither the place of the pointer nor presses outside of its own windows.
    return qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ? Manner::Popup : Manner::Window;
}

bool DesktopPanelPlacement::hasTransparency() const
{
    if (isWayland())
        return true;
    auto *connection = toolkitConnection();
    // EWMH: a compositing manager owns this selection.
    return connection != nullptr &&
           selectionOwner(connection, atomNamed(connection, "_NET_WM_CM_S0")) != XCB_WINDOW_NONE;
}

bool DesktopPanelPlacement::isButtonHeld() const
{
    auto *connection = toolkitConnection();
    if (connection == nullptr)
        return false;
    const auto root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const auto pointer = owned(xcb_query_pointer_reply(connection, xcb_query_pointer(connection, root), nullptr));
    return pointer &&
           (pointer->mask & (XCB_KEY_BUT_MASK_BUTTON_1 | XCB_KEY_BUT_MASK_BUTTON_2 | XCB_KEY_BUT_MASK_BUTTON_3)) != 0;
}

int DesktopPanelPlacement::cornerRadius() const { return isPlasma() ? 6 : 12; }

int DesktopPanelPlacement::gap() const
{
    return isPlasma() ? 16 : 4; // Plasma's panels float and reach beyond the room that they reserve
}

void DesktopPanelPlacement::anchor(QWindow &window, const QMargins &shadow, std::optional<QPoint> place)
{
    if (place && isPlasma())
        place = logicalPlaceOnPlasma(*place);
    auto *screen = place ? QGuiApplication::screenAt(*place) : nullptr;
    if (screen == nullptr && isPlasma()) {
        screen = QGuiApplication::primaryScreen();
        place = screen != nullptr ? std::optional(screen->geometry().bottomRight()) : std::nullopt;
    }
    const QSize panel = window.size().shrunkBy(shadow);
    auto position = screen != nullptr ? layerPosition(panel, place, screen->geometry(), gap())
                                      : layerPosition(panel, std::nullopt, {}, gap());
    position.margins -= shadow;
    layer_shell::anchor(window, position, screen);
}

} // namespace ambertide
