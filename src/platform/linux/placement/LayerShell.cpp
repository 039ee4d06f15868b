#include "platform/linux/placement/LayerShell.h"

#include <QGuiApplication>
#include <QWindow>

#include <wayland-client.h>

#include <LayerShellQt/Window>
#include <memory>
#include <string_view>

namespace ambertide::layer_shell {

namespace {

template <auto destroy>
struct Destroying
{
    template <typename Object>
    void operator()(Object *object) const
    {
        destroy(object);
    }
};

void noteGlobal(void *isFound, wl_registry *, std::uint32_t, const char *interface, std::uint32_t)
{
    if (std::string_view(interface) == "zwlr_layer_shell_v1")
        *static_cast<bool *>(isFound) = true;
}

void ignoreRemoval(void *, wl_registry *, std::uint32_t) {}

/// Asks over the toolkit's connection, in a queue apart from the toolkit's.
bool hasLayerShell(wl_display *display)
{
    const std::unique_ptr<wl_event_queue, Destroying<wl_event_queue_destroy>> queue(wl_display_create_queue(display));
    const std::unique_ptr<void, Destroying<wl_proxy_wrapper_destroy>> wrapper(wl_proxy_create_wrapper(display));
    if (!queue || !wrapper)
        return false;
    wl_proxy_set_queue(static_cast<wl_proxy *>(wrapper.get()), queue.get());
    const std::unique_ptr<wl_registry, Destroying<wl_registry_destroy>> registry(
        wl_display_get_registry(static_cast<wl_display *>(wrapper.get())));
    bool isFound = false;
    const wl_registry_listener listener{noteGlobal, ignoreRemoval};
    return registry && wl_registry_add_listener(registry.get(), &listener, &isFound) == 0 &&
           wl_display_roundtrip_queue(display, queue.get()) >= 0 && isFound;
}

} // namespace

bool isOffered()
{
    static const bool isOffered = [] {
        const auto *wayland = qGuiApp->nativeInterface<QNativeInterface::QWaylandApplication>();
        return wayland != nullptr && hasLayerShell(wayland->display());
    }();
    return isOffered;
}

void anchor(QWindow &window, const LayerPosition &position, QScreen *screen)
{
    using Layer = LayerShellQt::Window;
    auto *layer = Layer::get(&window);
    layer->setScope(QStringLiteral("panel"));
    layer->setLayer(Layer::LayerTop);
    layer->setKeyboardInteractivity(Layer::KeyboardInteractivityOnDemand);
    layer->setMargins(position.margins);
    Layer::Anchors anchors;
    anchors.setFlag(Layer::AnchorTop, position.edges.testFlag(Qt::TopEdge));
    anchors.setFlag(Layer::AnchorBottom, position.edges.testFlag(Qt::BottomEdge));
    anchors.setFlag(Layer::AnchorLeft, position.edges.testFlag(Qt::LeftEdge));
    anchors.setFlag(Layer::AnchorRight, position.edges.testFlag(Qt::RightEdge));
    layer->setAnchors(anchors);
    if (screen != nullptr)
        window.setScreen(screen);
    else
        layer->setScreenConfiguration(Layer::ScreenFromCompositor);
}

} // namespace ambertide::layer_shell
