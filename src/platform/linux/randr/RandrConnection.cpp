#include "platform/linux/randr/RandrConnection.h"

#include "platform/linux/randr/XcbReply.h"

#include <algorithm>
#include <string_view>

namespace ambertide {

namespace {

using namespace std::string_view_literals;

/// Far beyond any hardware, and three such tables fit in a request of every server.
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

/// Older releases have no extension that tells them apart, but a name for their outputs that nothing else uses.
bool RandrConnection::hasXwaylandOutput()
{
    constexpr auto prefix = "XWAYLAND"sv;
    std::vector<xcb_randr_get_output_info_cookie_t> cookies;
    for (const auto resourcesCookie : askForResources()) {
        const auto resources =
            owned(xcb_randr_get_screen_resources_current_reply(m_xcb.get(), resourcesCookie, nullptr));
        if (!resources)
            continue;
        const std::span outputs(xcb_randr_get_screen_resources_current_outputs(resources.get()),
                                resources->num_outputs);
        for (const auto output : outputs)
            cookies.push_back(xcb_randr_get_output_info(m_xcb.get(), output, resources->config_timestamp));
    }
    bool found = false;
    for (const auto cookie : cookies) {
        const auto info = owned(xcb_randr_get_output_info_reply(m_xcb.get(), cookie, nullptr));
        if (!info)
            continue;
        const std::span name(xcb_randr_get_output_info_name(info.get()), info->name_len);
        found = found || std::ranges::equal(name.first(std::min(name.size(), prefix.size())), prefix);
    }
    return found;
}

RandrConnection::State RandrConnection::state() const
{
    return xcb_connection_has_error(m_xcb.get()) ? State::unreachable : m_state;
}

std::span<const RandrConnection::Crtc> RandrConnection::readCrtcs()
{
    // Lists seldom change, so the questions about the CRTCs of the last one go out together with that for the new one.
    const auto resources = askForResources();
    const auto questions = ask();
    auto listed = list(resources);
    collect(questions);
    if (listed != m_listed) {
        m_listed = std::move(listed);
        collect(ask());
    }
    discardEvents();
    return m_crtcs;
}

const RandrConnection::Crtc *RandrConnection::find(xcb_randr_crtc_t identifier) const
{
    const auto found = std::ranges::find(m_crtcs, identifier, &Crtc::identifier);
    return found == m_crtcs.end() ? nullptr : &*found;
}

RandrConnection::ResourcesCookies RandrConnection::askForResources()
{
    ResourcesCookies cookies;
    for (const auto root : m_roots)
        cookies.push_back(xcb_randr_get_screen_resources_current(m_xcb.get(), root));
    return cookies;
}

std::vector<RandrConnection::ListedCrtc> RandrConnection::list(const ResourcesCookies &cookies)
{
    std::vector<ListedCrtc> listed;
    for (const auto cookie : cookies) {
        const auto resources = owned(xcb_randr_get_screen_resources_current_reply(m_xcb.get(), cookie, nullptr));
        if (!resources)
            continue;
        const std::span crtcs(xcb_randr_get_screen_resources_current_crtcs(resources.get()), resources->num_crtcs);
        for (const auto crtc : crtcs)
            listed.push_back({crtc, resources->config_timestamp});
    }
    return listed;
}

std::vector<RandrConnection::CrtcQuestions> RandrConnection::ask()
{
    std::vector<CrtcQuestions> questions;
    questions.reserve(m_listed.size());
    for (const auto &crtc : m_listed) {
        questions.push_back({xcb_randr_get_crtc_info(m_xcb.get(), crtc.identifier, crtc.configuration),
                             xcb_randr_get_crtc_gamma_size(m_xcb.get(), crtc.identifier)});
    }
    return questions;
}

void RandrConnection::collect(const std::vector<CrtcQuestions> &questions)
{
    m_crtcs.clear();
    for (std::size_t i = 0; i < questions.size(); ++i) {
        const auto info = owned(xcb_randr_get_crtc_info_reply(m_xcb.get(), questions[i].info, nullptr));
        const auto table = owned(xcb_randr_get_crtc_gamma_size_reply(m_xcb.get(), questions[i].tableSize, nullptr));
        const bool isActive = info && info->status == XCB_RANDR_SET_CONFIG_SUCCESS && info->mode != XCB_NONE;
        const bool hasTable = table && table->size >= smallestTable && table->size <= largestTable;
        m_crtcs.push_back({m_listed[i].identifier, isActive, hasTable ? table->size : std::uint16_t{0}});
    }
}

/// Errors of earlier writes, and the few events that every client is sent, would otherwise pile up.
void RandrConnection::discardEvents()
{
    while (const auto event = owned(xcb_poll_for_queued_event(m_xcb.get()))) {
    }
}

void RandrConnection::setGamma(xcb_randr_crtc_t crtc, const GammaRamp &ramp)
{
    xcb_randr_set_crtc_gamma(m_xcb.get(), crtc, ramp.size(), ramp.red(), ramp.green(), ramp.blue());
}

void RandrConnection::setIdentityEverywhere()
{
    for (const auto &crtc : readCrtcs()) {
        if (crtc.tableSize > 0)
            setGamma(crtc.identifier, GammaRamp::identity(crtc.tableSize));
    }
}

bool RandrConnection::synchronise()
{
    return owned(xcb_get_input_focus_reply(m_xcb.get(), xcb_get_input_focus(m_xcb.get()), nullptr)) != nullptr;
}

} // namespace ambertide
