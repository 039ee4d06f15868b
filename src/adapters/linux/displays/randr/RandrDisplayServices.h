#pragma once

#include "adapters/linux/displays/randr/RandrConnection.h"
#include "adapters/linux/displays/randr/TintClaim.h"
#include "adapters/linux/displays/shared/GuardianProcess.h"
#include "ports/DisplayServices.h"

#include <filesystem>
#include <mutex>
#include <optional>
#include <string>

namespace ambertide {

/// The displays of an X server, by RandR 1.3. A display is a CRTC with a mode. Any thread may call.
///
/// A connection that is lost or could not be made is tried again by each later call; a server that cannot tint is not
/// asked again. Either is said in one line, as is the return of the server.
///
/// The system's own colours are the identity. While a tint is on, a process of its own stands by to restore them; the
/// end of this object has it do so if restoreSystemColours() has not been called.
class RandrDisplayServices final : public DisplayServices
{
public:
    /// Connects to the server of that name. `guardian` is the guardian's file.
    RandrDisplayServices(std::string display, std::filesystem::path guardian);

    std::vector<DisplayIdentifier> activeDisplays() override;
    void setTransferTables(std::span<const DisplayIdentifier> displays, const GammaTables &tables) override;
    /// Returns when the server has done it.
    void restoreSystemColours() override;

private:
    bool connect();
    void report(RandrConnection::State state);
    void beginTint();

    const std::string m_display;
    std::mutex m_lock; ///< guards all below
    GuardianProcess m_guardian;
    std::optional<RandrConnection> m_server;
    std::optional<TintClaim> m_claim; ///< while this connection tints
    xcb_atom_t m_selection = XCB_NONE;
    RandrConnection::State m_reported = RandrConnection::State::usable;
};

} // namespace ambertide
