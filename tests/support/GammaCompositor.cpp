#include "support/GammaCompositor.h"

#include <hyprland-ctm-control-server-protocol.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <wayland-server.h>
#include <wlr-gamma-control-server-protocol.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace ambertide {

struct GammaCompositor::Head
{
    GammaCompositor &compositor;
    bool isRefused = false;
    Output output{};
    wl_global *global = nullptr;
    wl_resource *control = nullptr;
    std::array<double, 3> pending{1, 1, 1};
    bool isThere = true;
};

namespace {

void destroyResource(wl_client *, wl_resource *resource) { wl_resource_destroy(resource); }

} // namespace

/// What clients ask, each with the head or the compositor as its resource's user data.
struct GammaCompositor::Requests
{
    template <typename Data>
    static Data &dataOf(wl_resource *resource)
    {
        return *static_cast<Data *>(wl_resource_get_user_data(resource));
    }

    static void bindOutput(wl_client *client, void *head, std::uint32_t, std::uint32_t id)
    {
        auto *const resource = wl_resource_create(client, &wl_output_interface, 1, id);
        wl_resource_set_implementation(resource, nullptr, head, nullptr);
        wl_output_send_geometry(resource, 0, 0, 600, 340, WL_OUTPUT_SUBPIXEL_NONE, "", "", WL_OUTPUT_TRANSFORM_NORMAL);
        wl_output_send_mode(resource, WL_OUTPUT_MODE_CURRENT, 1920, 1080, 60'000);
    }

    static void bindManager(wl_client *client, void *compositor, std::uint32_t, std::uint32_t id)
    {
        static const struct zwlr_gamma_control_manager_v1_interface requests
        {
            getControl, destroyResource
        };
        auto *const resource = wl_resource_create(client, &zwlr_gamma_control_manager_v1_interface, 1, id);
        wl_resource_set_implementation(resource, &requests, compositor, nullptr);
    }

    static void getControl(wl_client *client, wl_resource *, std::uint32_t id, wl_resource *output)
    {
        static const struct zwlr_gamma_control_v1_interface requests
        {
            setGamma, destroyResource
        };
        auto &head = dataOf<Head>(output);
        auto *const control = wl_resource_create(client, &zwlr_gamma_control_v1_interface, 1, id);
        wl_resource_set_implementation(control, &requests, &head, loseControl);
        if (head.control || head.isRefused || !head.isThere)
            return zwlr_gamma_control_v1_send_failed(control);
        head.control = control;
        zwlr_gamma_control_v1_send_gamma_size(control, head.output.size);
    }

    static void loseControl(wl_resource *control)
    {
        auto &head = dataOf<Head>(control);
        if (head.control != control)
            return;
        head.control = nullptr;
        if (head.compositor.m_kind != Kind::hyprland)
            head.output.shown.clear();
    }

    static void setGamma(wl_client *, wl_resource *control, int file)
    {
        auto &head = dataOf<Head>(control);
        // From where the file stands, and no more than one byte too many.
        std::vector<std::uint16_t> levels(3 * std::size_t{head.output.size} + 1);
        const auto wanted = (levels.size() - 1) * sizeof(std::uint16_t);
        const auto length = static_cast<std::size_t>(read(file, levels.data(), wanted + 1));
        close(file);
        levels.pop_back();
        if (head.control != control)
            return;
        const auto kind = head.compositor.m_kind;
        if (length == wanted || (length == wanted + 1 && kind == Kind::sway)) {
            head.output.shown = std::move(levels);
            ++head.output.writes;
        } else if (kind == Kind::niri) {
            head.control = nullptr;
            zwlr_gamma_control_v1_send_failed(control);
        } else {
            wl_resource_post_error(control, ZWLR_GAMMA_CONTROL_V1_ERROR_INVALID_GAMMA, "length");
        }
    }

    static void bindMatrices(wl_client *client, void *data, std::uint32_t version, std::uint32_t id)
    {
        static const struct hyprland_ctm_control_manager_v1_interface requests
        {
            setMatrix, commitMatrices, destroyResource
        };
        auto &compositor = *static_cast<GammaCompositor *>(data);
        auto *const manager =
            wl_resource_create(client, &hyprland_ctm_control_manager_v1_interface, static_cast<int>(version), id);
        wl_resource_set_implementation(manager, &requests, data, loseMatrices);
        if (compositor.m_matrices)
            hyprland_ctm_control_manager_v1_send_blocked(manager);
        else
            compositor.m_matrices = manager;
    }

    static void setMatrix(wl_client *, wl_resource *, wl_resource *output, wl_fixed_t red, wl_fixed_t, wl_fixed_t,
                          wl_fixed_t, wl_fixed_t green, wl_fixed_t, wl_fixed_t, wl_fixed_t, wl_fixed_t blue)
    {
        dataOf<Head>(output).pending = {wl_fixed_to_double(red), wl_fixed_to_double(green), wl_fixed_to_double(blue)};
    }

    static void commitMatrices(wl_client *, wl_resource *manager)
    {
        auto &compositor = dataOf<GammaCompositor>(manager);
        for (auto &head : compositor.m_heads) {
            if (compositor.m_matrices == manager)
                head.output.matrix = head.pending;
        }
    }

    static void loseMatrices(wl_resource *manager)
    {
        auto &compositor = dataOf<GammaCompositor>(manager);
        if (compositor.m_matrices != manager)
            return;
        compositor.m_matrices = nullptr;
        for (auto &head : compositor.m_heads)
            head.output.matrix = head.pending = {1, 1, 1};
    }
};

GammaCompositor::GammaCompositor(Kind kind) : m_kind(kind) { start(); }

GammaCompositor::~GammaCompositor() { stop(); }

void GammaCompositor::start()
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::ranges::copy(socket(), address.sun_path);
    const int listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    m_display = wl_display_create();
    if (bind(listener, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0 || listen(listener, 9) != 0 ||
        wl_display_add_socket_fd(m_display, listener) != 0)
        throw std::runtime_error("the compositor cannot listen");
    if (m_kind != Kind::withoutGammaControl)
        wl_global_create(m_display, &zwlr_gamma_control_manager_v1_interface, 1, this, Requests::bindManager);
    if (m_kind == Kind::hyprland)
        wl_global_create(m_display, &hyprland_ctm_control_manager_v1_interface, 2, this, Requests::bindMatrices);
    m_shouldStop = false;
    m_thread = std::thread([this] { run(); });
}

void GammaCompositor::run()
{
    auto *const loop = wl_display_get_event_loop(m_display);
    while (!m_shouldStop) {
        {
            const std::scoped_lock lock(m_lock);
            wl_event_loop_dispatch(loop, 0);
            wl_display_flush_clients(m_display);
        }
        pollfd source{wl_event_loop_get_fd(loop), POLLIN, 0};
        poll(&source, 1, 10); // and then it looks whether it is to stop
    }
    wl_display_destroy_clients(m_display);
    wl_display_destroy(m_display);
    m_heads.clear();
    std::filesystem::remove(socket());
}

void GammaCompositor::stop()
{
    m_shouldStop = true;
    if (m_thread.joinable())
        m_thread.join();
}

std::size_t GammaCompositor::addOutput(std::uint32_t tableSize, bool isRefused)
{
    const std::scoped_lock lock(m_lock);
    auto &head = m_heads.emplace_back(*this);
    head.output.size = tableSize;
    head.isRefused = isRefused;
    head.global = wl_global_create(m_display, &wl_output_interface, 1, &head, Requests::bindOutput);
    wl_display_flush_clients(m_display);
    return m_heads.size() - 1;
}

void GammaCompositor::removeOutput(std::size_t index)
{
    const std::scoped_lock lock(m_lock);
    auto &head = *std::next(m_heads.begin(), static_cast<std::ptrdiff_t>(index));
    head.isThere = false;
    if (auto *const control = std::exchange(head.control, nullptr))
        zwlr_gamma_control_v1_send_failed(control);
    wl_global_remove(head.global);
    wl_display_flush_clients(m_display);
}

GammaCompositor::Output GammaCompositor::output(std::size_t index)
{
    const std::scoped_lock lock(m_lock);
    return std::next(m_heads.begin(), static_cast<std::ptrdiff_t>(index))->output;
}

void GammaCompositor::accuseEverybody()
{
    const std::scoped_lock lock(m_lock);
    wl_client *client = nullptr;
    wl_client_for_each(client, wl_display_get_client_list(m_display))
        wl_client_post_implementation_error(client, "%s", "");
    wl_display_flush_clients(m_display);
}

} // namespace ambertide
