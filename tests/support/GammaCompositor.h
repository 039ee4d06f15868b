#pragma once

#include "support/Tint.h"

#include <hyprland-ctm-control-server-protocol.h>
#include <poll.h>
#include <unistd.h>
#include <wayland-server.h>
#include <wlr-gamma-control-server-protocol.h>

#include <array>
#include <cstdint>
#include <deque>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

namespace ambertide {

/// A Wayland compositor that has nothing but outputs whose gamma tables can be set, with a thread of its own. It is
/// called from one other thread.
class GammaCompositor
{
public:
    /// Whose habits it has with tables of the wrong length, and with those of a program that has left.
    enum class Kind { sway, niri, hyprland, withoutGammaControl };

    struct Output
    {
        Kind kind;
        std::uint32_t size;     ///< levels in each table, as clients are told
        bool isCalibrated;      ///< tables are withheld for the sake of a colour profile
        bool isRefused = false; ///< nobody gets the control
        wl_global *global = nullptr;
        wl_resource *control = nullptr;
        std::vector<std::uint16_t> shown{}; ///< red, green, blue; empty: the compositor's own
        int writes = 0;
        std::array<double, 3> nextMatrix{1, 1, 1};
        std::array<double, 3> matrix{1, 1, 1};

        bool shows(float blue) const { return isTint(shown, blue); }
        bool isRestored() const { return shown.empty() || shows(1); }
    };

    /// `socket` is a name in the folder XDG_RUNTIME_DIR.
    GammaCompositor(Kind kind, const char *socket) : m_kind(kind)
    {
        if (wl_display_add_socket(m_display, socket) != 0)
            throw std::runtime_error("the compositor cannot listen");
        if (kind != Kind::withoutGammaControl)
            wl_global_create(m_display, &zwlr_gamma_control_manager_v1_interface, 1, this, bindManager);
        if (kind == Kind::hyprland)
            wl_global_create(m_display, &hyprland_ctm_control_manager_v1_interface, 2, this, bindMatrices);
        m_thread = std::jthread([this](const std::stop_token &stop) { run(stop); });
    }
    ~GammaCompositor()
    {
        m_thread = {}; // which waits for its end
        wl_display_destroy_clients(m_display);
        wl_display_destroy(m_display);
    }

    /// Its index.
    std::size_t addOutput(std::uint32_t tableSize, bool isCalibrated = false)
    {
        const std::scoped_lock lock(m_lock);
        auto &output = m_outputs.emplace_back(Output{m_kind, tableSize, isCalibrated});
        output.global = wl_global_create(m_display, &wl_output_interface, 1, &output, bindOutput);
        wl_display_flush_clients(m_display);
        return m_outputs.size() - 1;
    }
    void removeOutput(std::size_t index)
    {
        const std::scoped_lock lock(m_lock);
        auto &output = m_outputs[index];
        output.isRefused = true;
        if (output.control)
            zwlr_gamma_control_v1_send_failed(std::exchange(output.control, nullptr));
        wl_global_remove(output.global);
        wl_display_flush_clients(m_display);
    }
    Output output(std::size_t index)
    {
        const std::scoped_lock lock(m_lock);
        return m_outputs[index];
    }
    /// From now on another program sets the matrices.
    void takeMatrices()
    {
        const std::scoped_lock lock(m_lock);
        m_hasMatricesTaken = true;
    }
    /// It answers nobody while this is held.
    std::unique_lock<std::mutex> freeze() { return std::unique_lock(m_lock); }

private:
    void run(const std::stop_token &stop)
    {
        auto *const loop = wl_display_get_event_loop(m_display);
        while (!stop.stop_requested()) {
            pollfd source{wl_event_loop_get_fd(loop), POLLIN, 0};
            poll(&source, 1, 10);
            const std::scoped_lock lock(m_lock);
            wl_event_loop_dispatch(loop, 0);
            wl_display_flush_clients(m_display);
        }
    }

    // What clients ask. The data of a resource is its output, of a manager the compositor.
    template <typename Data>
    static Data &dataOf(wl_resource *resource)
    {
        return *static_cast<Data *>(wl_resource_get_user_data(resource));
    }
    static wl_resource *add(wl_client *client, const wl_interface &type, std::uint32_t version, std::uint32_t id,
                            const void *requests, void *data, wl_resource_destroy_func_t lose = nullptr)
    {
        auto *const resource = wl_resource_create(client, &type, static_cast<int>(version), id);
        wl_resource_set_implementation(resource, requests, data, lose);
        return resource;
    }
    static void destroy(wl_client *, wl_resource *resource) { wl_resource_destroy(resource); }

    static void bindOutput(wl_client *client, void *output, std::uint32_t version, std::uint32_t id)
    {
        add(client, wl_output_interface, version, id, nullptr, output);
    }
    static void bindManager(wl_client *client, void *compositor, std::uint32_t version, std::uint32_t id)
    {
        static const struct zwlr_gamma_control_manager_v1_interface requests = {getControl, destroy};
        add(client, zwlr_gamma_control_manager_v1_interface, version, id, &requests, compositor);
    }
    static void bindMatrices(wl_client *client, void *compositor, std::uint32_t version, std::uint32_t id)
    {
        static const struct hyprland_ctm_control_manager_v1_interface requests = {setMatrix, commitMatrices, destroy};
        auto *const manager =
            add(client, hyprland_ctm_control_manager_v1_interface, version, id, &requests, compositor);
        if (dataOf<GammaCompositor>(manager).m_hasMatricesTaken)
            hyprland_ctm_control_manager_v1_send_blocked(manager);
    }

    static void getControl(wl_client *client, wl_resource *, std::uint32_t id, wl_resource *resource)
    {
        static const struct zwlr_gamma_control_v1_interface requests = {setGamma, destroy};
        auto &output = dataOf<Output>(resource);
        auto *const control = add(client, zwlr_gamma_control_v1_interface, 1, id, &requests, &output, loseControl);
        if (output.control || output.isRefused) {
            output.isRefused = output.isRefused || output.kind == Kind::hyprland; // for good
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
        if (output.kind != Kind::hyprland)
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
        if (output.isCalibrated)
            return zwlr_gamma_control_v1_send_failed(control);
        if (length == wanted || (length == wanted + 1 && output.kind == Kind::sway)) {
            output.shown = std::move(levels);
            ++output.writes;
        } else if (output.kind == Kind::niri) {
            zwlr_gamma_control_v1_send_failed(std::exchange(output.control, nullptr));
        } else {
            wl_resource_post_error(control, ZWLR_GAMMA_CONTROL_V1_ERROR_INVALID_GAMMA, "length");
        }
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
    const Kind m_kind;
    std::mutex m_lock; ///< guards all below
    wl_display *const m_display = wl_display_create();
    std::deque<Output> m_outputs; ///< removed ones included
    bool m_hasMatricesTaken = false;
    std::jthread m_thread;
};

} // namespace ambertide
