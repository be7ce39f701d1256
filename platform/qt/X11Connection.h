#pragma once

#include <cstdlib>
#include <memory>
#include <string_view>
#include <xcb/xcb.h>

namespace platform::qt {

/// Takes ownership of a reply.
template <class Reply>
std::unique_ptr<Reply, decltype(&std::free)> ownedReply(Reply* reply) {
    return {reply, &std::free};
}

/// Returns Qt's connection to the X server, or null if the program is not on X11. Main thread.
xcb_connection_t* x11Connection();

/// Returns the atom of that name, or XCB_ATOM_NONE if the server does not reply.
xcb_atom_t x11Atom(xcb_connection_t* connection, std::string_view name);

} // namespace platform::qt
