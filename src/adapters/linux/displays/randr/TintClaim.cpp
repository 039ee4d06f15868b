#include "adapters/linux/displays/randr/TintClaim.h"

#include "adapters/linux/x11/Selection.h"

namespace ambertide {

xcb_atom_t TintClaim::selectionAtom(xcb_connection_t *connection)
{
    return atomNamed(connection, "_ME_TOVANU_AMBERTIDE");
}

xcb_window_t TintClaim::newest(xcb_connection_t *connection, xcb_atom_t selection)
{
    return selectionOwner(connection, selection);
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
