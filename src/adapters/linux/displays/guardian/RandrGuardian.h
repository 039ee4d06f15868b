#pragma once

#include "adapters/linux/displays/guardian/GuardianChannel.h"
#include "adapters/linux/displays/randr/RandrConnection.h"

#include <chrono>

namespace ambertide {

/// Gives the displays back when the application has ended, in whatever way, while it tinted them. A tint on X11
/// outlives the program that made it.
class RandrGuardian
{
public:
    /// `channel` stays the caller's. The server must be usable.
    RandrGuardian(RandrConnection &server, int channel);

    /// Returns when the application has ended and the displays have been seen to, or the server has gone. Sleeps until
    /// one of them says something. True when displays have been given back, without their calibrations.
    bool run();

private:
    using Clock = std::chrono::steady_clock;

    void watch(GuardianMessage claim);
    void readEvents();
    void awaitEndOfClaim();
    bool giveDisplaysBack();

    RandrConnection &m_server;
    GuardianChannel m_channel;
    const xcb_atom_t m_selection;
    xcb_window_t m_claim = XCB_NONE; ///< the application tints under it
    bool m_claimEnded = false;       ///< the server has dropped it, so nothing more of the application's is to come
};

} // namespace ambertide
