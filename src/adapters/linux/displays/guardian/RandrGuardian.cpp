#include "adapters/linux/displays/guardian/RandrGuardian.h"

#include "adapters/linux/displays/randr/TintClaim.h"
#include "adapters/linux/x11/XcbReply.h"

#include <poll.h>

#include <array>

namespace ambertide {

namespace {

/// The displays are to be restored half a second after the application's end.
constexpr std::chrono::milliseconds patience{400};

} // namespace

RandrGuardian::RandrGuardian(RandrConnection &server, int channel)
    : m_server(server), m_channel(channel), m_selection(TintClaim::selectionAtom(server.xcb()))
{
}

bool RandrGuardian::run()
{
    for (;;) {
        readEvents();
        if (m_server.state() != RandrConnection::State::usable)
            return false;
        std::array<pollfd, 2> sources{
            {{m_channel.descriptor(), POLLIN, 0}, {xcb_get_file_descriptor(m_server.xcb()), POLLIN, 0}}};
        if (poll(sources.data(), sources.size(), -1) < 0)
            continue;
        if (sources[0].revents == 0)
            continue;
        if (!m_channel.receive())
            break;
        watch(m_channel.told());
    }
    if (m_claim == XCB_NONE)
        return false;
    awaitEndOfClaim();
    return giveDisplaysBack();
}

void RandrGuardian::watch(GuardianMessage claim)
{
    m_claim = claim;
    m_claimEnded = false;
    if (m_claim == XCB_NONE)
        return;
    const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(m_server.xcb(), m_claim, XCB_CW_EVENT_MASK, &mask);
    m_server.flush();
}

void RandrGuardian::readEvents()
{
    while (const auto event = owned(xcb_poll_for_event(m_server.xcb()))) {
        // An error means that the claim had ended before it could be watched.
        const auto type = event->response_type & 0x7F;
        xcb_window_t window = XCB_NONE;
        if (type == XCB_DESTROY_NOTIFY)
            window = reinterpret_cast<const xcb_destroy_notify_event_t *>(event.get())->window;
        else if (type == 0)
            window = reinterpret_cast<const xcb_value_error_t *>(event.get())->bad_value;
        m_claimEnded = m_claimEnded || (window != XCB_NONE && window == m_claim);
    }
}

/// Until the claim ends, the server may still be processing requests that the application left in its socket. The wait
/// is bounded, because a stuck program may hold the dead one's connection open.
void RandrGuardian::awaitEndOfClaim()
{
    const auto deadline = Clock::now() + patience;
    for (readEvents(); !m_claimEnded && m_server.state() == RandrConnection::State::usable; readEvents()) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
        if (left.count() <= 0)
            return;
        pollfd source{xcb_get_file_descriptor(m_server.xcb()), POLLIN, 0};
        poll(&source, 1, static_cast<int>(left.count()));
    }
}

bool RandrGuardian::giveDisplaysBack()
{
    // Nobody can claim and tint between the look and the writes.
    xcb_grab_server(m_server.xcb());
    const auto newest = TintClaim::newest(m_server.xcb(), m_selection);
    const bool isFree = newest == XCB_NONE || (newest == m_claim && !m_claimEnded);
    if (isFree)
        m_server.restoreEverywhere();
    xcb_ungrab_server(m_server.xcb());
    m_server.synchronise();
    return isFree;
}

} // namespace ambertide
