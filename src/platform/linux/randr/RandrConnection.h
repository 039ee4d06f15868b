#pragma once

#include "platform/linux/randr/GammaRamp.h"

#include <xcb/randr.h>
#include <xcb/xcb.h>

#include <memory>
#include <span>
#include <string>
#include <vector>

namespace ambertide {

/// A connection to an X server, apart from any toolkit's, through which the gamma tables of all CRTCs of all its
/// screens are found and written. One thread at a time.
///
/// No call fails: on a connection that is not usable the lists are empty and the writes do nothing. A CRTC that the
/// server answers for with an error (vanished, leased to another program) counts as inactive and without a table.
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
    };

    explicit RandrConnection(const std::string &display);

    State state() const;

    /// Reads the CRTCs anew. One round trip, whatever their number, and a second one when the list has changed.
    std::span<const Crtc> readCrtcs();
    /// What was last read about a CRTC; null when it is not among those.
    const Crtc *find(xcb_randr_crtc_t identifier) const;

    /// Queues a write. `ramp` must have the size of the CRTC's table.
    void setGamma(xcb_randr_crtc_t crtc, const GammaRamp &ramp);
    /// Reads the CRTCs anew and queues the identity for each that has a table, active or not.
    void setIdentityEverywhere();

    void flush() { xcb_flush(m_xcb.get()); }
    /// Waits until the server has processed all that was queued; false when it could not be learned.
    bool synchronise();

    xcb_connection_t *xcb() const { return m_xcb.get(); }
    xcb_window_t root() const { return m_roots.front(); }

private:
    struct ListedCrtc
    {
        xcb_randr_crtc_t identifier;
        xcb_timestamp_t configuration; ///< of the list that names it
        bool operator==(const ListedCrtc &) const = default;
    };
    struct CrtcQuestions
    {
        xcb_randr_get_crtc_info_cookie_t info;
        xcb_randr_get_crtc_gamma_size_cookie_t tableSize;
    };
    using ResourcesCookies = std::vector<xcb_randr_get_screen_resources_current_cookie_t>;
    struct Disconnect
    {
        void operator()(xcb_connection_t *connection) const { xcb_disconnect(connection); }
    };

    State examineServer();
    bool hasXwaylandOutput();
    ResourcesCookies askForResources();
    std::vector<ListedCrtc> list(const ResourcesCookies &cookies);
    std::vector<CrtcQuestions> ask();
    void collect(const std::vector<CrtcQuestions> &questions);
    void discardEvents();

    std::unique_ptr<xcb_connection_t, Disconnect> m_xcb;
    std::vector<xcb_window_t> m_roots;
    State m_state;
    std::vector<ListedCrtc> m_listed;
    std::vector<Crtc> m_crtcs; ///< in the order of m_listed
};

} // namespace ambertide
