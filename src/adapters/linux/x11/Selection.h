#pragma once

#include "adapters/linux/x11/XcbReply.h"

#include <xcb/xcb.h>

#include <cstdint>
#include <string_view>

namespace ambertide {

/// The atom of this name, XCB_ATOM_NONE where the server does not answer. One round trip.
inline xcb_atom_t atomNamed(xcb_connection_t *connection, std::string_view name)
{
    const auto cookie = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const auto reply = owned(xcb_intern_atom_reply(connection, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

/// The window that owns a selection, XCB_WINDOW_NONE where none does. One round trip.
inline xcb_window_t selectionOwner(xcb_connection_t *connection, xcb_atom_t selection)
{
    const auto cookie = xcb_get_selection_owner(connection, selection);
    const auto reply = owned(xcb_get_selection_owner_reply(connection, cookie, nullptr));
    return reply ? reply->owner : xcb_window_t{XCB_WINDOW_NONE};
}

} // namespace ambertide
