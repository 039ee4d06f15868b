#pragma once

#include "adapters/linux/displays/shared/DisplayBackend.h"
#include "ports/DisplayServices.h"

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <memory>
#include <thread>

namespace ambertide {

/// The displays of the session, through one backend, which works on a thread of its own. That thread waits for the
/// server, so that no caller has to, and writes the present tint again as soon as the server announces a change. A
/// write that need not wait is made on the caller's thread, so that merely keeping up a tint wakes no other thread.
///
/// Of writes that have to wait only the newest is kept: with a slow server steps of a ramp are skipped, and no queue
/// grows.
///
/// A guardian that dies is replaced at once.
class BackendDisplayServices final : public DisplayServices
{
public:
    using Create = std::function<std::unique_ptr<DisplayBackend>()>;
    using Settle = std::function<void(pid_t)>;

    /// Both are called on that thread: `create` once, and `settle` for each guardian that has been started. `settle`
    /// may wait for a moment.
    explicit BackendDisplayServices(
        Create create, Settle settle = [](pid_t) {});
    /// Waits until the thread has ended, for a second at most; a thread that still waits for its server by then is left
    /// behind.
    ~BackendDisplayServices() override;

    std::vector<DisplayIdentifier> activeDisplays() override;
    void setTransferTables(std::span<const DisplayIdentifier> displays, const GammaTables &tables) override;
    /// Waits for the server, for half a second at most.
    void restoreSystemColours() override;
    void beginRamp(const std::optional<GammaTables> &target) override;
    std::optional<TintRefusal> refusal() override;
    bool isGuarded() override;
    /// To be called when this process is about to end: restores the displays if they are tinted, and waits for the
    /// server for `limit` at most. Nothing is tinted after that. A guardian would restore them as well, but one that
    /// has just been killed still looks alive.
    void end(std::chrono::milliseconds limit);

private:
    class Worker;

    std::shared_ptr<Worker> m_worker; ///< shared with the thread
    std::thread m_thread;
};

} // namespace ambertide
