#include "adapters/linux/panel/LayerShell.h"

#include "base/Release.h"

#include <QGuiApplication>
#include <QPainter>
#include <QRasterWindow>
#include <QScreen>

#include <wayland-client.h>

#include <LayerShellQt/Window>
#include <memory>
#include <string_view>

namespace ambertide::layer_shell {

namespace {

void noteGlobal(void *isFound, wl_registry *, std::uint32_t, const char *interface, std::uint32_t)
{
    if (std::string_view(interface) == "zwlr_layer_shell_v1")
        *static_cast<bool *>(isFound) = true;
}

void ignoreRemoval(void *, wl_registry *, std::uint32_t) {}

/// Asks over the toolkit's connection, in a queue apart from the toolkit's.
bool hasLayerShell(wl_display *display)
{
    const std::unique_ptr<wl_event_queue, Release<wl_event_queue_destroy>> queue(wl_display_create_queue(display));
    const std::unique_ptr<void, Release<wl_proxy_wrapper_destroy>> wrapper(wl_proxy_create_wrapper(display));
    if (!queue || !wrapper)
        return false;
    wl_proxy_set_queue(static_cast<wl_proxy *>(wrapper.get()), queue.get());
    const std::unique_ptr<wl_registry, Release<wl_registry_destroy>> registry(
        wl_display_get_registry(static_cast<wl_display *>(wrapper.get())));
    bool isFound = false;
    const wl_registry_listener listener{noteGlobal, ignoreRemoval};
    return registry && wl_registry_add_listener(registry.get(), &listener, &isFound) == 0 &&
           wl_display_roundtrip_queue(display, queue.get()) >= 0 && isFound;
}

using Layer = LayerShellQt::Window;

/// An unseen window over a whole screen, the desktop's panels included, that closes the panel at a press: a layer may
/// keep the keyboard when something else is pressed. It is deleted when the panel closes.
class PressCatcher final : public QRasterWindow
{
public:
    PressCatcher(QWindow &panel, QScreen *screen) : m_panel(panel)
    {
        auto transparent = format();
        transparent.setAlphaBufferSize(8);
        setFormat(transparent);
        setScreen(screen);
        resize(screen->size());
        auto *layer = Layer::get(this);
        layer->setScope(QStringLiteral("panel-surroundings"));
        layer->setLayer(Layer::LayerTop);
        layer->setKeyboardInteractivity(Layer::KeyboardInteractivityNone);
        layer->setExclusiveZone(-1);
        layer->setAnchors({Layer::AnchorTop, Layer::AnchorBottom, Layer::AnchorLeft, Layer::AnchorRight});
        connect(&panel, &QWindow::visibleChanged, this, [this](bool isVisible) {
            if (!isVisible)
                deleteLater();
        });
        connect(&panel, &QObject::destroyed, this, &QObject::deleteLater);
        show();
    }

private:
    void mousePressEvent(QMouseEvent *) override { m_panel.close(); }

    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.fillRect(QRect({}, size()), Qt::transparent);
    }

    QWindow &m_panel;
};

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
    const auto screens = QGuiApplication::screens();
    for (auto *each : screens)
        new PressCatcher(window, each); // deletes itself
    auto *layer = Layer::get(&window);
    layer->setScope(QStringLiteral("panel"));
    layer->setLayer(Layer::LayerOverlay);
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
