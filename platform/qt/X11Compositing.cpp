#include "platform/qt/X11Compositing.h"

#include "platform/qt/X11Connection.h"

namespace platform::qt {

bool windowsAreTranslucent() {
    xcb_connection_t* const connection = x11Connection();
    if (!connection)
        return true;
    // A compositing manager owns the selection of its screen.
    const xcb_atom_t selection = x11Atom(connection, "_NET_WM_CM_S0");
    const auto owner = ownedReply(xcb_get_selection_owner_reply(
        connection, xcb_get_selection_owner(connection, selection), nullptr));
    return owner && owner->owner != XCB_WINDOW_NONE;
}

} // namespace platform::qt
