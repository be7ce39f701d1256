#include "platform/qt/X11Connection.h"

#include <QGuiApplication>

#include <cstdint>

namespace platform::qt {

xcb_connection_t* x11Connection() {
    const auto* application = qobject_cast<QGuiApplication*>(QCoreApplication::instance());
    const auto* x11 =
        application ? application->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    // The "offscreen" platform has the interface but no connection.
    return x11 ? x11->connection() : nullptr;
}

xcb_atom_t x11Atom(xcb_connection_t* connection, std::string_view name) {
    const auto length = static_cast<std::uint16_t>(name.size());
    const auto reply = ownedReply(xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 0, length, name.data()), nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

} // namespace platform::qt
