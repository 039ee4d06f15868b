#include "support/RandrClient.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <stdexcept>

namespace ambertide {

namespace {

template <typename Reply>
auto answered(Reply *reply)
{
    if (!reply)
        throw std::runtime_error("the X server answered with an error");
    return std::shared_ptr<Reply>(reply, std::free);
}

bool isIdentity(const std::vector<std::uint16_t> &table)
{
    const double step = 65535.0 / static_cast<double>(table.size() - 1);
    std::size_t i = 0;
    return std::ranges::all_of(table, [&](double level) { return std::abs(level - step * double(i++)) <= 1.0; });
}

} // namespace

RandrClient::RandrClient(const std::string &display) : m_xcb(xcb_connect(display.c_str(), nullptr))
{
    if (xcb_connection_has_error(m_xcb)) {
        xcb_disconnect(m_xcb);
        throw std::runtime_error("no X server at " + display);
    }
    m_root = xcb_setup_roots_iterator(xcb_get_setup(m_xcb)).data->root;
    answered(xcb_randr_query_version_reply(m_xcb, xcb_randr_query_version(m_xcb, 1, 3), nullptr));
}

RandrClient::~RandrClient() { xcb_disconnect(m_xcb); }

std::vector<xcb_randr_crtc_t> RandrClient::crtcs()
{
    const auto cookie = xcb_randr_get_screen_resources_current(m_xcb, m_root);
    const auto reply = answered(xcb_randr_get_screen_resources_current_reply(m_xcb, cookie, nullptr));
    const auto *first = xcb_randr_get_screen_resources_current_crtcs(reply.get());
    return {first, first + reply->num_crtcs};
}

std::vector<xcb_randr_crtc_t> RandrClient::activeCrtcs()
{
    auto active = crtcs();
    std::erase_if(active, [this](auto crtc) {
        const auto cookie = xcb_randr_get_crtc_info(m_xcb, crtc, XCB_CURRENT_TIME);
        return answered(xcb_randr_get_crtc_info_reply(m_xcb, cookie, nullptr))->mode == XCB_NONE;
    });
    return active;
}

RandrClient::Ramp RandrClient::ramp(xcb_randr_crtc_t crtc)
{
    const auto reply = answered(xcb_randr_get_crtc_gamma_reply(m_xcb, xcb_randr_get_crtc_gamma(m_xcb, crtc), nullptr));
    const auto table = [size = reply->size](const std::uint16_t *first) {
        return std::vector<std::uint16_t>(first, first + size);
    };
    return {table(xcb_randr_get_crtc_gamma_red(reply.get())), table(xcb_randr_get_crtc_gamma_green(reply.get())),
            table(xcb_randr_get_crtc_gamma_blue(reply.get()))};
}

bool RandrClient::showsIdentityEverywhere()
{
    return std::ranges::all_of(crtcs(), [this](auto crtc) { return std::ranges::all_of(ramp(crtc), isIdentity); });
}

} // namespace ambertide
