#include "adapters/linux/displays/randr/TintClaim.h"

#include "adapters/linux/x11/XcbReply.h"

#include <string_view>

namespace ambertide {

xcb_atom_t TintClaim::selectionAtom(xcb_connection_t *connection)
{
    constexpr std::string_view name = "_ME_TOVANU_AMBERTIDE";
    const auto cookie = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const auto reply = owned(xcb_intern_atom_reply(connection, cookie, nullptr));
    return reply ? reply->atom : XCB_NONE;
}

xcb_window_t TintClaim::newest(xcb_connection_t *connection, xcb_atom_t selection)
{
    const auto cookie = xcb_get_selection_owner(connection, selection);
    const auto reply = owned(xcb_get_selection_owner_reply(connection, cookie, nullptr));
    return reply ? reply->owner : XCB_NONE;
}

TintClaim::TintClaim(xcb_connection_t *connection, xcb_window_t root, xcb_atom_t selection)
    : m_connection(connection), m_window(xcb_generate_id(connection))
{
    xcb_create_window(connection, 0, m_window, root, -1, -1, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT,
                      0, nullptr);
    xcb_set_selection_owner(connection, m_window, selection, XCB_CURRENT_TIME);
}

TintClaim::~TintClaim() { xcb_destroy_window(m_connection, m_window); }

} // namespace ambertide
