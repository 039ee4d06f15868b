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

/// What the compositor has, asked for over a connection of its own: binding outputs a second time over the toolkit's
/// connection crashes the toolkit.
class Globals
{
public:
    Globals() : m_display(wl_display_connect(nullptr))
    {
        if (!m_display)
            return;
        m_registry.reset(wl_display_get_registry(m_display.get()));
        static constexpr wl_registry_listener listener{noteGlobal, [](void *, wl_registry *, std::uint32_t) {}};
        if (m_registry && wl_registry_add_listener(m_registry.get(), &listener, this) == 0 &&
            wl_display_roundtrip(m_display.get()) >= 0)
            wl_display_roundtrip(m_display.get()); // for the events of the outputs
    }

    bool hasLayerShell() const { return m_hasLayerShell; }

    std::map<QString, QSize> deviceSizes() const
    {
        std::map<QString, QSize> sizes;
        for (const auto &output : m_outputs)
            sizes.emplace(output->name, output->isTurned ? output->mode.transposed() : output->mode);
        return sizes;
    }

private:
    struct Output
    {
        std::unique_ptr<wl_output, Release<wl_output_destroy>> proxy;
        QString name;
        QSize mode;
        bool isTurned = false;
    };

    static void noteGlobal(void *context, wl_registry *registry, std::uint32_t number, const char *interface,
                           std::uint32_t version)
    {
        auto &globals = *static_cast<Globals *>(context);
        const std::string_view name(interface);
        globals.m_hasLayerShell = globals.m_hasLayerShell || name == "zwlr_layer_shell_v1";
        if (name != wl_output_interface.name || version < WL_OUTPUT_NAME_SINCE_VERSION)
            return;
        auto &output = *globals.m_outputs.emplace_back(std::make_unique<Output>());
        output.proxy.reset(static_cast<wl_output *>(
            wl_registry_bind(registry, number, &wl_output_interface, WL_OUTPUT_NAME_SINCE_VERSION)));
        static constexpr wl_output_listener listener{
            .geometry =
                [](void *to, wl_output *, int, int, int, int, int, const char *, const char *, int transform) {
                    // The odd transforms are turns by 90 and 270 degrees, flipped or not.
                    static_cast<Output *>(to)->isTurned = transform % 2 != 0;
                },
            .mode =
                [](void *to, wl_output *, std::uint32_t flags, int width, int height, int) {
                    if ((flags & WL_OUTPUT_MODE_CURRENT) != 0)
                        static_cast<Output *>(to)->mode = QSize(width, height);
                },
            .done = [](void *, wl_output *) {},
            .scale = [](void *, wl_output *, int) {},
            .name = [](void *to, wl_output *,
                       const char *text) { static_cast<Output *>(to)->name = QString::fromUtf8(text); },
            .description = [](void *, wl_output *, const char *) {}};
        wl_output_add_listener(output.proxy.get(), &listener, &output);
    }

    std::unique_ptr<wl_display, Release<wl_display_disconnect>> m_display;
    std::unique_ptr<wl_registry, Release<wl_registry_destroy>> m_registry;
    std::vector<std::unique_ptr<Output>> m_outputs;
    bool m_hasLayerShell = false;
};

using Layer = LayerShellQt::Window;

/// An invisible window over a whole screen, the desktop's panels included, that closes our panel when it is pressed. It
/// is needed because a layer may keep the keyboard when something else is pressed. It deletes itself when the panel
/// closes.
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
    static const bool isOffered = Globals().hasLayerShell();
    return isOffered;
}

std::map<QString, QSize> deviceSizes() { return Globals().deviceSizes(); }

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
