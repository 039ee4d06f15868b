#pragma once

#include "adapters/linux/displays/guardian/GuardianChannel.h"
#include "adapters/linux/displays/randr/RandrConnection.h"

#include <chrono>

namespace ambertide {

/// Waits for the application's end, of whatever kind, and restores the displays if they were tinted then, since a tint
/// on X11 outlives the program that made it.
class RandrGuardian
{
public:
    /// `channel` stays the caller's. The server must be usable.
    RandrGuardian(RandrConnection &server, int channel);

    /// Sleeps until the application or the server sends something. Returns when the application has ended and the
    /// displays have been dealt with, or when the server has gone. True when displays were restored, as yet without
    /// their calibrations.
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
    xcb_window_t m_claim = XCB_NONE; ///< the window of the claim under which the application tints
    bool m_claimEnded = false;       ///< the server has destroyed it, so it has processed all that the application sent
};

} // namespace ambertide
