#pragma once

#include <xcb/xcb.h>

namespace ambertide {

/// Says on an X server that this connection tints its displays, for as long as the object lives: the newest claim owns
/// a selection, through a window of its own. The server drops a claim whose connection ends, after all else that it
/// sent.
class TintClaim
{
public:
    /// The name of the selection. One round trip.
    static xcb_atom_t selectionAtom(xcb_connection_t *connection);
    /// The window of the newest claim that still stands; XCB_NONE where there is none. One round trip.
    static xcb_window_t newest(xcb_connection_t *connection, xcb_atom_t selection);

    /// Queues the claim. `root` is the root window of any screen. The connection must outlive the claim.
    TintClaim(xcb_connection_t *connection, xcb_window_t root, xcb_atom_t selection);
    /// Queues the end of the claim; a newer one of another connection stays.
    ~TintClaim();
    TintClaim(const TintClaim &) = delete;
    TintClaim &operator=(const TintClaim &) = delete;

    xcb_window_t window() const { return m_window; }

private:
    xcb_connection_t *m_connection;
    xcb_window_t m_window;
};

} // namespace ambertide
