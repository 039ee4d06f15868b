#include "support/GammaCompositor.h"

#include <hyprland-ctm-control-server-protocol.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <wayland-server.h>
#include <wlr-gamma-control-server-protocol.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace ambertide {

namespace {

using ManagerRequests = struct zwlr_gamma_control_manager_v1_interface;
using ControlRequests = struct zwlr_gamma_control_v1_interface;
using MatrixRequests = struct hyprland_ctm_control_manager_v1_interface;

template <typename Data>
Data &dataOf(wl_resource *resource)
{
    return *static_cast<Data *>(wl_resource_get_user_data(resource));
}

void destroyResource(wl_client *, wl_resource *resource) { wl_resource_destroy(resource); }

} // namespace

/// What clients ask. The data of a resource is its output, of a manager the compositor.
struct GammaCompositor::Requests
{
    static void bindOutput(wl_client *client, void *output, std::uint32_t, std::uint32_t id)
    {
        wl_resource_set_implementation(wl_resource_create(client, &wl_output_interface, 1, id), nullptr, output,
                                       nullptr);
    }

    static void bindManager(wl_client *client, void *compositor, std::uint32_t, std::uint32_t id)
    {
        static const ManagerRequests requests{getControl, destroyResource};
        wl_resource_set_implementation(wl_resource_create(client, &zwlr_gamma_control_manager_v1_interface, 1, id),
                                       &requests, compositor, nullptr);
    }

    static void getControl(wl_client *client, wl_resource *, std::uint32_t id, wl_resource *resource)
    {
        static const ControlRequests requests{setGamma, destroyResource};
        auto &output = dataOf<Output>(resource);
        auto *const control = wl_resource_create(client, &zwlr_gamma_control_v1_interface, 1, id);
        wl_resource_set_implementation(control, &requests, &output, loseControl);
        if (output.control || output.isRefused) {
            output.isRefused = output.isRefused || output.compositor.m_kind == Kind::hyprland; // for good
            return zwlr_gamma_control_v1_send_failed(control);
        }
        output.control = control;
        zwlr_gamma_control_v1_send_gamma_size(control, output.size);
    }

    static void loseControl(wl_resource *control)
    {
        auto &output = dataOf<Output>(control);
        if (output.control != control)
            return;
        output.control = nullptr;
        if (output.compositor.m_kind != Kind::hyprland)
            output.shown.clear();
    }

    static void setGamma(wl_client *, wl_resource *control, int file)
    {
        auto &output = dataOf<Output>(control);
        // From where the file stands, and no more than one byte too many.
        std::vector<std::uint16_t> levels(3 * std::size_t{output.size} + 1);
        const auto wanted = (levels.size() - 1) * sizeof(std::uint16_t);
        const auto length = static_cast<std::size_t>(read(file, levels.data(), wanted + 1));
        close(file);
        levels.pop_back();
        if (output.control != control)
            return;
        const auto kind = output.compositor.m_kind;
        if (output.isCalibrated)
            return zwlr_gamma_control_v1_send_failed(control);
        if (length == wanted || (length == wanted + 1 && kind == Kind::sway)) {
            output.shown = std::move(levels);
            ++output.writes;
        } else if (kind == Kind::niri) {
            zwlr_gamma_control_v1_send_failed(std::exchange(output.control, nullptr));
        } else {
            wl_resource_post_error(control, ZWLR_GAMMA_CONTROL_V1_ERROR_INVALID_GAMMA, "length");
        }
    }

    static void bindMatrices(wl_client *client, void *compositor, std::uint32_t version, std::uint32_t id)
    {
        static const MatrixRequests requests{setMatrix, commitMatrices, destroyResource};
        auto *const manager =
            wl_resource_create(client, &hyprland_ctm_control_manager_v1_interface, static_cast<int>(version), id);
        wl_resource_set_implementation(manager, &requests, compositor, loseMatrices);
    }

    static void setMatrix(wl_client *, wl_resource *, wl_resource *output, wl_fixed_t red, wl_fixed_t, wl_fixed_t,
                          wl_fixed_t, wl_fixed_t green, wl_fixed_t, wl_fixed_t, wl_fixed_t, wl_fixed_t blue)
    {
        dataOf<Output>(output).nextMatrix = {wl_fixed_to_double(red), wl_fixed_to_double(green),
                                             wl_fixed_to_double(blue)};
    }

    static void commitMatrices(wl_client *, wl_resource *manager)
    {
        for (auto &output : dataOf<GammaCompositor>(manager).m_outputs)
            output.matrix = output.nextMatrix;
    }

    static void loseMatrices(wl_resource *manager)
    {
        for (auto &output : dataOf<GammaCompositor>(manager).m_outputs)
            output.matrix = output.nextMatrix = {1, 1, 1};
    }
};

GammaCompositor::GammaCompositor(Kind kind, const std::string &socket) : m_kind(kind), m_display(wl_display_create())
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::ranges::copy(socket, address.sun_path);
    unlink(socket.c_str());
    const int listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (bind(listener, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0 || listen(listener, 9) != 0 ||
        wl_display_add_socket_fd(m_display, listener) != 0)
        throw std::runtime_error("the compositor cannot listen");
    if (kind != Kind::withoutGammaControl)
        wl_global_create(m_display, &zwlr_gamma_control_manager_v1_interface, 1, this, Requests::bindManager);
    if (kind == Kind::hyprland)
        wl_global_create(m_display, &hyprland_ctm_control_manager_v1_interface, 2, this, Requests::bindMatrices);
    m_thread = std::thread([this] { run(); });
}

GammaCompositor::~GammaCompositor()
{
    m_shouldStop = true;
    m_thread.join();
    wl_display_destroy_clients(m_display);
    wl_display_destroy(m_display);
}

void GammaCompositor::run()
{
    auto *const loop = wl_display_get_event_loop(m_display);
    while (!m_shouldStop) {
        pollfd source{wl_event_loop_get_fd(loop), POLLIN, 0};
        poll(&source, 1, 10); // and then it looks whether it is to stop
        const std::scoped_lock lock(m_lock);
        wl_event_loop_dispatch(loop, 0);
        wl_display_flush_clients(m_display);
    }
}

std::size_t GammaCompositor::addOutput(std::uint32_t tableSize, bool isCalibrated)
{
    const std::scoped_lock lock(m_lock);
    auto &output = m_outputs.emplace_back(Output{*this, tableSize, isCalibrated});
    output.global = wl_global_create(m_display, &wl_output_interface, 1, &output, Requests::bindOutput);
    wl_display_flush_clients(m_display);
    return m_outputs.size() - 1;
}

void GammaCompositor::removeOutput(std::size_t index)
{
    const std::scoped_lock lock(m_lock);
    auto &output = m_outputs[index];
    output.isRefused = true;
    if (output.control)
        zwlr_gamma_control_v1_send_failed(std::exchange(output.control, nullptr));
    wl_global_remove(output.global);
    wl_display_flush_clients(m_display);
}

GammaCompositor::Output GammaCompositor::output(std::size_t index)
{
    const std::scoped_lock lock(m_lock);
    return m_outputs[index];
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
