#pragma once

#include "adapters/linux/displays/shared/GammaRamp.h"
#include "adapters/linux/x11/XcbReply.h"

#include <xcb/randr.h>
#include <xcb/xcb.h>

#include <map>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace ambertide {

/// The calibration curves of outputs, by their names: what they show when nothing tints them. An output without one
/// shows the identity.
using CalibrationCurves = std::map<std::string, GammaTables>;

/// A connection to an X server, apart from any toolkit's, through which the gamma tables of all CRTCs of all its
/// screens are found and written. One thread at a time.
///
/// No call fails: on a connection that is not usable the lists are empty and the writes do nothing. A CRTC for which
/// the server returns an error (vanished, leased to another program) counts as inactive and without a table.
class RandrConnection
{
public:
    enum class State {
        usable,
        unreachable,  ///< no server answers at that name, or the connection has broken
        withoutRandr, ///< the server has no RandR 1.3
        xwayland,     ///< the server accepts tables and does not show them
    };

    struct Crtc
    {
        xcb_randr_crtc_t identifier;
        bool isActive;           ///< has a mode
        std::uint16_t tableSize; ///< entries in each of its tables; 0 when it has none
        std::string output;      ///< the name of its first output; empty when it has none
    };

    explicit RandrConnection(const std::string &display);

    State state() const;

    /// The CRTCs as they are now. The first call asks the server to announce changes. After that a call costs nothing
    /// while neither a change nor an error has been received, else three round trips, whatever the number of CRTCs.
    std::span<const Crtc> crtcs();
    /// Handles what the server has sent, without waiting. True when displays may have changed.
    bool takeEvents();
    /// The same for what has been received already, without reading more. takeEvents() will still report it.
    bool hasChanges();
    /// Whether another client has taken a selection that this one owned, until settleLostSelection() is called.
    bool hasLostSelection() const { return m_hasLostSelection; }
    void settleLostSelection() { m_hasLostSelection = false; }
    /// What was last read about this CRTC; null when it was not among those read.
    const Crtc *find(xcb_randr_crtc_t identifier) const;

    /// Queues a write. `ramp` must have the size of the CRTC's table.
    void setGamma(xcb_randr_crtc_t crtc, const GammaRamp &ramp);
    /// Reads the CRTCs and queues, for each that has a table, active or not, its curve, or else the identity.
    void restoreEverywhere(const CalibrationCurves &curves = {});
    /// Whether writes to all CRTCs that were last read can be queued and flushed without waiting for the server.
    bool isReadyToWrite() const;

    void flush() { xcb_flush(m_xcb.get()); }
    /// Waits until the server has processed all that was queued; false when the connection breaks before.
    bool synchronise();

    xcb_connection_t *xcb() const { return m_xcb.get(); }
    xcb_window_t root() const { return m_roots.front(); }

private:
    using Resources = XcbReply<xcb_randr_get_screen_resources_current_reply_t>;
    struct Disconnect
    {
        void operator()(xcb_connection_t *connection) const { xcb_disconnect(connection); }
    };

    State examineServer();
    bool hasXwaylandOutput();
    std::vector<Resources> screenResources();
    void watchChanges();
    void note(const xcb_generic_event_t &event);
    void readCrtcs();

    std::unique_ptr<xcb_connection_t, Disconnect> m_xcb;
    std::vector<xcb_window_t> m_roots;
    State m_state;
    bool m_isWatching = false; ///< the server tells of changes
    bool m_isStale = true;     ///< m_crtcs has to be read again
    bool m_hasChanged = false; ///< displays may have changed since the last takeEvents()
    bool m_hasLostSelection = false;
    std::vector<Crtc> m_crtcs;
};

} // namespace ambertide
