#include "adapters/linux/displays/wlroots/WaylandConnection.h"

#include <hyprland-ctm-control-client-protocol.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <wayland-client.h>
#include <wlr-gamma-control-client-protocol.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>

namespace ambertide {

namespace {

std::string socketPath(const std::string &display)
{
    const char *const folder = std::getenv("XDG_RUNTIME_DIR");
    return display.starts_with('/') || !folder ? display : std::string(folder) + '/' + display;
}

/// wl_display_connect() would take the socket of WAYLAND_SOCKET whatever name it is given.
wl_display *connectTo(const std::string &path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.empty() || path.size() >= sizeof address.sun_path)
        return nullptr;
    std::ranges::copy(path, address.sun_path);
    // Does not block, so that a socket with a full backlog is not waited for.
    const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (descriptor < 0)
        return nullptr;
    if (connect(descriptor, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0)
        return wl_display_connect_to_fd(descriptor);
    close(descriptor);
    return nullptr;
}

void noteDone(void *isDone, wl_callback *, std::uint32_t) { *static_cast<bool *>(isDone) = true; }

} // namespace

void WaylandDeleter::operator()(wl_display *display) const { wl_display_disconnect(display); }
void WaylandDeleter::operator()(wl_registry *registry) const { wl_registry_destroy(registry); }
void WaylandDeleter::operator()(wl_callback *callback) const { wl_callback_destroy(callback); }
void WaylandDeleter::operator()(wl_output *output) const { wl_output_destroy(output); }
void WaylandDeleter::operator()(zwlr_gamma_control_manager_v1 *manager) const
{
    zwlr_gamma_control_manager_v1_destroy(manager);
}
void WaylandDeleter::operator()(zwlr_gamma_control_v1 *control) const { zwlr_gamma_control_v1_destroy(control); }
void WaylandDeleter::operator()(hyprland_ctm_control_manager_v1 *manager) const
{
    hyprland_ctm_control_manager_v1_destroy(manager);
}

WaylandConnection::WaylandConnection(const std::string &display) : m_display(connectTo(socketPath(display))) {}

bool WaylandConnection::isUsable() const { return m_display && wl_display_get_error(m_display.get()) == 0; }

int WaylandConnection::descriptor() const { return isUsable() ? wl_display_get_fd(m_display.get()) : -1; }

void WaylandConnection::takeEvents()
{
    auto *const display = m_display.get();
    while (isUsable() && wl_display_prepare_read(display) != 0)
        wl_display_dispatch_pending(display);
    if (!isUsable())
        return;
    if (wait(POLLIN, Clock::now()))
        wl_display_read_events(display);
    else
        wl_display_cancel_read(display);
    wl_display_dispatch_pending(display);
}

bool WaylandConnection::flush() { return !isUsable() || wl_display_flush(m_display.get()) >= 0 || errno != EAGAIN; }

bool WaylandConnection::flush(std::chrono::milliseconds patience)
{
    const auto deadline = Clock::now() + patience;
    while (!flush()) {
        if (!wait(POLLOUT, deadline))
            return false;
    }
    return true;
}

bool WaylandConnection::synchronise(std::chrono::milliseconds patience)
{
    const auto deadline = Clock::now() + patience;
    if (!isUsable() || !flush(patience))
        return false;
    bool isDone = false;
    const wl_callback_listener listener{noteDone};
    const WaylandObject<wl_callback> callback(wl_display_sync(m_display.get()));
    if (!callback || wl_callback_add_listener(callback.get(), &listener, &isDone) != 0)
        return false;
    while (!isDone && isUsable()) {
        const short events = flush() ? POLLIN : POLLIN | POLLOUT;
        if (!wait(events, deadline))
            return false;
        takeEvents();
    }
    return isDone;
}

bool WaylandConnection::wait(short events, Clock::time_point deadline) const
{
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    pollfd source{wl_display_get_fd(m_display.get()), events, 0};
    return poll(&source, 1, static_cast<int>(std::max<std::int64_t>(left.count(), 0))) > 0;
}

} // namespace ambertide
