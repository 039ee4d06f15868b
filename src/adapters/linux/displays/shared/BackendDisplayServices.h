#pragma once

#include "adapters/linux/displays/shared/DisplayBackend.h"
#include "ports/DisplayServices.h"

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <memory>
#include <thread>

namespace ambertide {

/// The displays of the session, by one backend, which works on a thread of its own: that waits for the server, so that
/// no caller has to, and writes the present tint again as soon as the server tells of a change. A write that need not
/// wait is made on the caller's thread, so that a tint that is merely kept up wakes nobody else.
///
/// Of writes that have to wait, the newest is kept: a slow server makes steps of a ramp fall out, never a queue grow.
///
/// A guardian that dies is replaced at once.
class BackendDisplayServices final : public DisplayServices
{
public:
    using Create = std::function<std::unique_ptr<DisplayBackend>()>;
    using Settle = std::function<void(pid_t)>;

    /// Both are called on that thread: `settle` for each guardian that has been started, and it may wait for a moment.
    explicit BackendDisplayServices(
        Create create, Settle settle = [](pid_t) {});
    /// Waits for the backend's end, for a second at most: after that a server that does not answer keeps the thread.
    ~BackendDisplayServices() override;

    std::vector<DisplayIdentifier> activeDisplays() override;
    void setTransferTables(std::span<const DisplayIdentifier> displays, const GammaTables &tables) override;
    /// Waits for the server, for half a second at most.
    void restoreSystemColours() override;
    void beginRamp(const std::optional<GammaTables> &target) override;
    std::optional<TintRefusal> refusal() override;
    bool isGuarded() override;
    /// This process is about to end: gives the displays back if they are tinted, and waits for the server for `limit`
    /// at most. Nothing is tinted any more. A guardian that lives would do it as well, but one that has just been
    /// killed still looks alive.
    void end(std::chrono::milliseconds limit);

private:
    class Worker;

    std::shared_ptr<Worker> m_worker; ///< shared with the thread
    std::thread m_thread;
};

} // namespace ambertide
