#pragma once

#include <xcb/xcb.h>

namespace ambertide {

/// Declares on an X server that its displays are this connection's to tint, for as long as the object lives: the newest
/// claim owns a selection, through a window of its own. When a connection ends, the server drops its claim, after it
/// has processed everything else that was sent.
///
/// Any client can own a selection, so a claim counts only if the server knows the process behind it and that process is
/// a running Ambertide of this user. One on another machine, or hidden in another container, does not count.
class TintClaim
{
public:
    /// The name of the selection. One round trip.
    static xcb_atom_t selectionAtom(xcb_connection_t *connection);
    /// The window of the newest claim that counts and still stands; XCB_NONE where there is none. Two round trips, and
    /// one more the first time.
    static xcb_window_t newest(xcb_connection_t *connection, xcb_atom_t selection);

    /// Queues the claim. `root` is the root window of any screen. The connection must outlive the claim.
    TintClaim(xcb_connection_t *connection, xcb_window_t root, xcb_atom_t selection);
    /// Queues the end of the claim; another connection's newer one stays.
    ~TintClaim();
    TintClaim(const TintClaim &) = delete;
    TintClaim &operator=(const TintClaim &) = delete;

    /// Queues a request that makes this the newest claim again.
    void renew();

    xcb_window_t window() const { return m_window; }

private:
    xcb_connection_t *m_connection;
    xcb_window_t m_window;
    xcb_atom_t m_selection;
};

} // namespace ambertide
