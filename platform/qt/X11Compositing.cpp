#include "platform/qt/X11Compositing.h"

#include <QGuiApplication>

#include <cstdlib>
#include <memory>
#include <string_view>
#include <xcb/xcb.h>

namespace platform::qt {
namespace {

template <class T>
std::unique_ptr<T, decltype(&std::free)> owned(T* reply) {
    return {reply, &std::free};
}

} // namespace

bool windowsAreTranslucent() {
    const auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (!x11 || !x11->connection()) // offscreen there is the one, but not the other
        return true;
    // Who composites a screen owns its selection.
    constexpr std::string_view kSelection = "_NET_WM_CM_S0";
    xcb_connection_t* const connection = x11->connection();
    const auto atom = owned(xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 0, kSelection.size(), kSelection.data()), nullptr));
    if (!atom)
        return false;
    const auto owner = owned(xcb_get_selection_owner_reply(
        connection, xcb_get_selection_owner(connection, atom->atom), nullptr));
    return owner && owner->owner != XCB_WINDOW_NONE;
}

} // namespace platform::qt
