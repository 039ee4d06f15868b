#pragma once

#include "adapters/linux/displays/shared/DisplayBackend.h"
#include "ports/DisplayServices.h"

#include <functional>
#include <memory>
#include <thread>

namespace ambertide {

/// The displays of the session, by one backend, which works on a thread of its own: that waits for the server, so that
/// no caller has to, and writes the present tint again as soon as the server tells of a change. A write that need not
/// wait is made on the caller's thread, so that a tint that is merely kept up wakes nobody else.
///
/// Of writes that have to wait, the newest is kept: a slow server makes steps of a ramp fall out, never a queue grow.
class BackendDisplayServices final : public DisplayServices
{
public:
    /// `create` is called on that thread.
    explicit BackendDisplayServices(std::function<std::unique_ptr<DisplayBackend>()> create);
    /// Waits for the backend's end, for a second at most: after that a server that does not answer keeps the thread.
    ~BackendDisplayServices() override;

    std::vector<DisplayIdentifier> activeDisplays() override;
    void setTransferTables(std::span<const DisplayIdentifier> displays, const GammaTables &tables) override;
    /// Waits for the server, for half a second at most.
    void restoreSystemColours() override;
    void beginRamp(const std::optional<GammaTables> &target) override;
    std::optional<TintRefusal> refusal() override;

private:
    class Worker;

    std::shared_ptr<Worker> m_worker; ///< shared with the thread
    std::thread m_thread;
};

} // namespace ambertide
