#pragma once

#include <xcb/xcb.h>

namespace ambertide {

/// Says on an X server that its displays are this connection's to tint, for as long as the object lives: the newest
/// claim owns a selection, through a window of its own. The server drops a claim whose connection ends, after all else
/// that it sent.
///
/// Any client can own a selection. A claim counts only if the server knows the process behind it, and that is a running
/// Ambertide of this user: not that of another machine, nor one that another container hides.
class TintClaim
{
public:
    /// The name of the selection. One round trip.
    static xcb_atom_t selectionAtom(xcb_connection_t *connection);
    /// The window of the newest claim that counts and still stands; XCB_NONE where there is none. Two round trips, and
    /// one more for the first time.
    static xcb_window_t newest(xcb_connection_t *connection, xcb_atom_t selection);

    /// Queues the claim. `root` is the root window of any screen. The connection must outlive the claim.
    TintClaim(xcb_connection_t *connection, xcb_window_t root, xcb_atom_t selection);
    /// Queues the end of the claim; a newer one of another connection stays.
    ~TintClaim();
    TintClaim(const TintClaim &) = delete;
    TintClaim &operator=(const TintClaim &) = delete;

    /// Queues it as the newest once more.
    void renew();

    xcb_window_t window() const { return m_window; }

private:
    xcb_connection_t *m_connection;
    xcb_window_t m_window;
    xcb_atom_t m_selection;
};

} // namespace ambertide
