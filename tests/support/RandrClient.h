#pragma once

#include <xcb/randr.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace ambertide {

/// Another program at an X server, as a test sees its displays: with a connection and requests of its own, each
/// answered before it returns. Throws when there is no server.
class RandrClient
{
public:
    /// Red, green, blue.
    using Ramp = std::array<std::vector<std::uint16_t>, 3>;

    explicit RandrClient(const std::string &display)
        : m_connection(xcb_connect(display.c_str(), nullptr), xcb_disconnect)
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
    Ramp ramp(xcb_randr_crtc_t crtc)
    {
        const auto cookie = xcb_randr_get_crtc_gamma(m_xcb, crtc);
        const auto reply = answered(xcb_randr_get_crtc_gamma_reply(m_xcb, cookie, nullptr));
        const auto table = [size = reply->size](const std::uint16_t *first) {
            return std::vector<std::uint16_t>(first, first + size);
        };
        return {table(xcb_randr_get_crtc_gamma_red(reply.get())), table(xcb_randr_get_crtc_gamma_green(reply.get())),
                table(xcb_randr_get_crtc_gamma_blue(reply.get()))};
    }
    void takeSelection(std::string_view name)
    {
        const auto atom = xcb_intern_atom(m_xcb, 0, static_cast<std::uint16_t>(name.size()), name.data());
        const auto window = xcb_generate_id(m_xcb);
        xcb_create_window(m_xcb, 0, window, m_root, 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, 0, 0, nullptr);
        xcb_set_selection_owner(m_xcb, window, answered(xcb_intern_atom_reply(m_xcb, atom, nullptr))->atom, 0);
        crtcs(); // and the server has done it
    }
    /// Whether each CRTC shows levels as they are, to within a rounding.
    bool showsIdentityEverywhere()
    {
        const auto isIdentity = [](const std::vector<std::uint16_t> &table) {
            const double step = 65535.0 / static_cast<double>(table.size() - 1);
            std::size_t i = 0;
            return std::ranges::all_of(table,
                                       [&](double level) { return std::abs(level - step * double(i++)) <= 1.0; });
        };
        return std::ranges::all_of(crtcs(), [&](auto crtc) { return std::ranges::all_of(ramp(crtc), isIdentity); });
    }

private:
    template <typename Reply>
    static std::shared_ptr<Reply> answered(Reply *reply)
    {
        if (reply == nullptr)
            throw std::runtime_error("the X server answered with an error");
        return std::shared_ptr<Reply>(reply, std::free);
    }

    std::unique_ptr<xcb_connection_t, void (*)(xcb_connection_t *)> m_connection;
    xcb_connection_t *m_xcb = m_connection.get();
    xcb_window_t m_root;
};

} // namespace ambertide
