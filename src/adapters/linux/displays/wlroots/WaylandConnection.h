#pragma once

#include <chrono>
#include <memory>
#include <string>

struct hyprland_ctm_control_manager_v1;
struct wl_callback;
struct wl_display;
struct wl_output;
struct wl_registry;
struct zwlr_gamma_control_manager_v1;
struct zwlr_gamma_control_v1;

namespace ambertide {

struct WaylandDeleter
{
    void operator()(wl_display *display) const;
    void operator()(wl_registry *registry) const;
    void operator()(wl_callback *callback) const;
    void operator()(wl_output *output) const;
    void operator()(zwlr_gamma_control_manager_v1 *manager) const;
    void operator()(zwlr_gamma_control_v1 *control) const;
    void operator()(hyprland_ctm_control_manager_v1 *manager) const;
};

/// Owns an object of a Wayland connection. The connection must outlive it.
template <typename Object>
using WaylandObject = std::unique_ptr<Object, WaylandDeleter>;

/// A connection to a Wayland compositor, apart from any toolkit's. One thread at a time.
///
/// Nothing here fails: once the connection is lost, all calls return at once and do nothing.
class WaylandConnection
{
public:
    /// Connects to the socket of that path, or of that name in the folder XDG_RUNTIME_DIR. The socket that
    /// WAYLAND_SOCKET leaves to the toolkit is not touched.
    explicit WaylandConnection(const std::string &display);

    bool isUsable() const;
    /// Only while usable.
    wl_display *display() const { return m_display.get(); }
    int descriptor() const;

    /// Calls the listeners for what the compositor has sent, without waiting for more.
    void takeEvents();
    /// Sends what is queued. False when the compositor takes no more for now. Nothing may then be queued until this has
    /// returned true, because the queue is short and its overflow ends the connection.
    bool flush();
    /// The same, but waits for the compositor for that long.
    bool flush(std::chrono::milliseconds patience);
    /// Waits until the compositor has processed all that was queued. False when it has not confirmed that in time.
    bool synchronise(std::chrono::milliseconds patience);

private:
    using Clock = std::chrono::steady_clock;

    /// False when none of the events happens by then.
    bool wait(short events, Clock::time_point deadline) const;

    WaylandObject<wl_display> m_display;
};

} // namespace ambertide
