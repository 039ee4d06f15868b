#include "adapters/linux/displays/randr/RandrConnection.h"

#include <poll.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace ambertide {

namespace {

using namespace std::string_view_literals;

/// Entries; far more than any hardware has, and three tables of this size still fit into a request to any server.
constexpr std::uint16_t largestTable = 16384;
constexpr std::uint16_t smallestTable = 2;

std::vector<xcb_window_t> rootsOf(xcb_connection_t *connection)
{
    std::vector<xcb_window_t> roots;
    if (xcb_connection_has_error(connection))
        return roots;
    for (auto screen = xcb_setup_roots_iterator(xcb_get_setup(connection)); screen.rem > 0; xcb_screen_next(&screen))
        roots.push_back(screen.data->root);
    return roots;
}

std::string nameOf(const XcbReply<xcb_randr_get_output_info_reply_t> &info)
{
    if (!info)
        return {};
    const auto name = listIn(info, xcb_randr_get_output_info_name(info.get()), info->name_len);
    return {name.begin(), name.end()};
}

} // namespace

RandrConnection::RandrConnection(const std::string &display)
    : m_xcb(xcb_connect(display.c_str(), nullptr)), m_roots(rootsOf(m_xcb.get())), m_state(examineServer())
{
}

RandrConnection::State RandrConnection::examineServer()
{
    auto *const xcb = m_xcb.get();
    if (m_roots.empty())
        return State::unreachable;
    const auto *randr = xcb_get_extension_data(xcb, &xcb_randr_id);
    if (!randr || !randr->present)
        return State::withoutRandr;

    constexpr auto xwaylandExtension = "XWAYLAND"sv;
    const auto versionCookie = xcb_randr_query_version(xcb, 1, 3);
    const auto xwaylandCookie =
        xcb_query_extension(xcb, static_cast<std::uint16_t>(xwaylandExtension.size()), xwaylandExtension.data());
    const auto version = owned(xcb_randr_query_version_reply(xcb, versionCookie, nullptr));
    const auto xwayland = owned(xcb_query_extension_reply(xcb, xwaylandCookie, nullptr));
    if (!version || version->major_version < 1 || (version->major_version == 1 && version->minor_version < 3))
        return State::withoutRandr;
    if ((xwayland && xwayland->present) || hasXwaylandOutput())
        return State::xwayland;
    return State::usable;
}

/// Older releases of Xwayland lack the extension that identifies it, but name their outputs as nothing else does.
bool RandrConnection::hasXwaylandOutput()
{
    constexpr auto prefix = "XWAYLAND"sv;
    std::vector<xcb_randr_get_output_info_cookie_t> cookies;
    for (const auto &resources : screenResources()) {
        const auto outputs =
            listIn(resources, xcb_randr_get_screen_resources_current_outputs(resources.get()), resources->num_outputs);
        for (const auto output : outputs)
            cookies.push_back(xcb_randr_get_output_info(m_xcb.get(), output, resources->config_timestamp));
    }
    bool found = false;
    for (const auto cookie : cookies) {
        const auto name = nameOf(owned(xcb_randr_get_output_info_reply(m_xcb.get(), cookie, nullptr)));
        found = found || name.starts_with(prefix);
    }
    return found;
}

RandrConnection::State RandrConnection::state() const
{
    return xcb_connection_has_error(m_xcb.get()) ? State::unreachable : m_state;
}

std::span<const RandrConnection::Crtc> RandrConnection::crtcs()
{
    watchChanges(); // before reading, so that no change falls between
    if (m_isStale)
        readCrtcs();
    return m_crtcs;
}

const RandrConnection::Crtc *RandrConnection::find(xcb_randr_crtc_t identifier) const
{
    const auto found = std::ranges::find(m_crtcs, identifier, &Crtc::identifier);
    return found == m_crtcs.end() ? nullptr : &*found;
}

std::vector<RandrConnection::Resources> RandrConnection::screenResources()
{
    // The "current" form does not probe the hardware, which takes long and makes some displays blink.
    std::vector<xcb_randr_get_screen_resources_current_cookie_t> cookies;
    for (const auto root : m_roots)
        cookies.push_back(xcb_randr_get_screen_resources_current(m_xcb.get(), root));
    std::vector<Resources> resources;
    for (const auto cookie : cookies) {
        if (auto reply = owned(xcb_randr_get_screen_resources_current_reply(m_xcb.get(), cookie, nullptr)))
            resources.push_back(std::move(reply));
    }
    return resources;
}

void RandrConnection::watchChanges()
{
    if (std::exchange(m_isWatching, true))
        return;
    for (const auto root : m_roots) {
        xcb_randr_select_input(m_xcb.get(), root,
                               XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                                   XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE);
    }
}

bool RandrConnection::takeEvents()
{
    while (const auto event = owned(xcb_poll_for_event(m_xcb.get())))
        note(*event);
    return std::exchange(m_hasChanged, false);
}

bool RandrConnection::hasChanges()
{
    while (const auto event = owned(xcb_poll_for_queued_event(m_xcb.get())))
        note(*event);
    return m_hasChanged;
}

/// An error means that a write may have gone to a CRTC that has changed, so the CRTCs are read again. That alone is no
/// reason to write again, or a CRTC that refuses every write (leased to another program) would be written to without
/// end.
void RandrConnection::note(const xcb_generic_event_t &event)
{
    const auto type = event.response_type & 0x7F;
    if (type == XCB_SELECTION_CLEAR) {
        m_hasLostSelection = true;
        return;
    }
    m_isStale = true;
    const auto first = xcb_get_extension_data(m_xcb.get(), &xcb_randr_id)->first_event;
    if (type == first + XCB_RANDR_SCREEN_CHANGE_NOTIFY || type == first + XCB_RANDR_NOTIFY)
        m_hasChanged = true;
}

bool RandrConnection::isReadyToWrite() const
{
    if (m_isStale)
        return false;
    // A socket counts as writable while three quarters of its buffer, of 208 KB as a rule, are free.
    constexpr std::size_t largestWrite = 100'000;
    std::size_t bytes = 0;
    for (const auto &crtc : m_crtcs)
        bytes += 3 * sizeof(std::uint16_t) * crtc.tableSize;
    pollfd socket{xcb_get_file_descriptor(m_xcb.get()), POLLIN | POLLOUT, 0};
    return bytes <= largestWrite && poll(&socket, 1, 0) == 1 && socket.revents == POLLOUT;
}

void RandrConnection::readCrtcs()
{
    struct Questions
    {
        xcb_randr_crtc_t crtc;
        xcb_randr_get_crtc_info_cookie_t info;
        xcb_randr_get_crtc_gamma_size_cookie_t tableSize;
    };
    std::vector<Questions> asked;
    for (const auto &resources : screenResources()) {
        const auto listed =
            listIn(resources, xcb_randr_get_screen_resources_current_crtcs(resources.get()), resources->num_crtcs);
        for (const auto crtc : listed) {
            asked.push_back({crtc, xcb_randr_get_crtc_info(m_xcb.get(), crtc, resources->config_timestamp),
                             xcb_randr_get_crtc_gamma_size(m_xcb.get(), crtc)});
        }
    }
    m_isStale = false;
    m_crtcs.clear();
    std::vector<xcb_randr_get_output_info_cookie_t> outputs;
    for (const auto &[crtc, infoCookie, sizeCookie] : asked) {
        const auto info = owned(xcb_randr_get_crtc_info_reply(m_xcb.get(), infoCookie, nullptr));
        const auto table = owned(xcb_randr_get_crtc_gamma_size_reply(m_xcb.get(), sizeCookie, nullptr));
        const bool isActive = info && info->mode != XCB_NONE;
        const bool hasTable = table && table->size >= smallestTable && table->size <= largestTable;
        m_crtcs.push_back({crtc, isActive, hasTable ? table->size : std::uint16_t{0}, {}});
        auto &question = outputs.emplace_back();
        if (!info)
            continue;
        const auto shown = listIn(info, xcb_randr_get_crtc_info_outputs(info.get()), info->num_outputs);
        if (!shown.empty())
            question = xcb_randr_get_output_info(m_xcb.get(), shown.front(), info->timestamp);
    }
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        if (outputs[i].sequence != 0)
            m_crtcs[i].output = nameOf(owned(xcb_randr_get_output_info_reply(m_xcb.get(), outputs[i], nullptr)));
    }
}

void RandrConnection::setGamma(xcb_randr_crtc_t crtc, const GammaRamp &ramp)
{
    xcb_randr_set_crtc_gamma(m_xcb.get(), crtc, ramp.size(), ramp.red(), ramp.green(), ramp.blue());
}

void RandrConnection::restoreEverywhere(const CalibrationCurves &curves)
{
    readCrtcs();
    for (const auto &crtc : m_crtcs) {
        if (crtc.tableSize == 0)
            continue;
        const auto curve = curves.find(crtc.output);
        setGamma(crtc.identifier, curve == curves.end() ? GammaRamp::identity(crtc.tableSize)
                                                        : GammaRamp(curve->second, crtc.tableSize));
    }
}

bool RandrConnection::synchronise()
{
    return owned(xcb_get_input_focus_reply(m_xcb.get(), xcb_get_input_focus(m_xcb.get()), nullptr)) != nullptr;
}

} // namespace ambertide
