#pragma once

#include <xcb/randr.h>

#include <array>
#include <cstdint>
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

    explicit RandrClient(const std::string &display);
    ~RandrClient();
    RandrClient(const RandrClient &) = delete;
    RandrClient &operator=(const RandrClient &) = delete;

    std::vector<xcb_randr_crtc_t> crtcs();
    /// Those that show a picture.
    std::vector<xcb_randr_crtc_t> activeCrtcs();
    Ramp ramp(xcb_randr_crtc_t crtc);
    /// Whether each CRTC shows levels as they are, to within a rounding.
    bool showsIdentityEverywhere();

private:
    xcb_connection_t *m_xcb;
    xcb_window_t m_root;
};

} // namespace ambertide
