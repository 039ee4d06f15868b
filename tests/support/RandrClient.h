#pragma once

#include "adapters/linux/x11/Selection.h"
#include "support/Tint.h"

#include <xcb/randr.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

namespace ambertide {

/// Another program at an X server, as a test sees its displays: with a connection and requests of its own, each
/// answered before it returns. Throws when there is no server.
class RandrClient
{
public:
    explicit RandrClient(const std::string &display) : m_connection(xcb_connect(display.c_str(), nullptr))
    {
        if (xcb_connection_has_error(m_xcb))
            throw std::runtime_error("no X server at " + display);
        m_root = xcb_setup_roots_iterator(xcb_get_setup(m_xcb)).data->root;
        answered(xcb_randr_query_version_reply(m_xcb, xcb_randr_query_version(m_xcb, 1, 3), nullptr));
    }

    std::vector<xcb_randr_crtc_t> crtcs()
    {
        const auto cookie = xcb_randr_get_screen_resources_current(m_xcb, m_root);
        const auto reply = answered(xcb_randr_get_screen_resources_current_reply(m_xcb, cookie, nullptr));
        const auto *first = xcb_randr_get_screen_resources_current_crtcs(reply.get());
        return {first, first + reply->num_crtcs};
    }
    /// Those that show a picture.
    std::vector<xcb_randr_crtc_t> activeCrtcs()
    {
        auto active = crtcs();
        std::erase_if(active, [this](auto crtc) {
            const auto cookie = xcb_randr_get_crtc_info(m_xcb, crtc, XCB_CURRENT_TIME);
            return answered(xcb_randr_get_crtc_info_reply(m_xcb, cookie, nullptr))->mode == XCB_NONE;
        });
        return active;
    }
    /// The tables of red, green and blue, one after the other.
    std::vector<std::uint16_t> levels(xcb_randr_crtc_t crtc)
    {
        const auto cookie = xcb_randr_get_crtc_gamma(m_xcb, crtc);
        const auto reply = answered(xcb_randr_get_crtc_gamma_reply(m_xcb, cookie, nullptr));
        const auto *first = xcb_randr_get_crtc_gamma_red(reply.get());
        return {first, first + 3 * std::ptrdiff_t{reply->size}};
    }
    /// Red, green and blue of white.
    std::array<int, 3> whitePoint(xcb_randr_crtc_t crtc)
    {
        const auto all = levels(crtc);
        const auto size = all.size() / 3;
        return {all[size - 1], all[2 * size - 1], all[3 * size - 1]};
    }
    /// Whether each CRTC that shows a picture is tinted so.
    bool shows(float blue)
    {
        return std::ranges::all_of(activeCrtcs(), [&](auto crtc) { return isTint(levels(crtc), blue); });
    }
    /// Whether each CRTC shows levels as they are.
    bool showsIdentityEverywhere()
    {
        return std::ranges::all_of(crtcs(), [&](auto crtc) { return isTint(levels(crtc), 1); });
    }
    void takeSelection(std::string_view name)
    {
        const auto window = xcb_generate_id(m_xcb);
        xcb_create_window(m_xcb, 0, window, m_root, 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, 0, 0, nullptr);
        xcb_set_selection_owner(m_xcb, window, atomNamed(m_xcb, name), 0);
        crtcs(); // and the server has done it
    }

private:
    template <typename Reply>
    static XcbReply<Reply> answered(Reply *reply)
    {
        if (reply == nullptr)
            throw std::runtime_error("the X server answered with an error");
        return owned(reply);
    }

    std::unique_ptr<xcb_connection_t, Release<&xcb_disconnect>> m_connection;
    xcb_connection_t *m_xcb = m_connection.get();
    xcb_window_t m_root;
};

} // namespace ambertide
