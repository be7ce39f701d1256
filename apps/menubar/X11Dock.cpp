#include "apps/menubar/X11Dock.h"

#include "platform/qt/X11Connection.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWindow>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <xcb/xcb.h>

using platform::qt::ownedReply;
using platform::qt::x11Atom;
using platform::qt::x11Connection;

namespace apps {
namespace {

template <std::size_t count>
void setProperty(const QWindow& window, std::string_view name, xcb_atom_t type,
                 const std::array<std::uint32_t, count>& values) {
    xcb_connection_t* x = x11Connection();
    xcb_change_property(x, XCB_PROP_MODE_REPLACE, static_cast<xcb_window_t>(window.winId()),
                        x11Atom(x, name), type, 32, count, values.data());
}

/// Returns the rightmost column of all screens together, in native pixels.
std::uint32_t lastColumn() {
    xcb_connection_t* x = x11Connection();
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(x)).data->root;
    const auto reply = ownedReply(xcb_get_geometry_reply(x, xcb_get_geometry(x, root), nullptr));
    return reply && reply->width > 0 ? reply->width - 1U : 0xFFFFU;
}

std::uint32_t pixels(double points, double ratio) {
    return static_cast<std::uint32_t>(std::lround(std::ceil(points * ratio)));
}

} // namespace

void X11Dock::makeDock(QWindow& window) {
    xcb_connection_t* x = x11Connection();
    if (!x)
        return;
    setProperty(window, "_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM,
                std::array{x11Atom(x, "_NET_WM_WINDOW_TYPE_DOCK")});
    // All desktops: otherwise some window managers reserve the space on only one.
    setProperty(window, "_NET_WM_DESKTOP", XCB_ATOM_CARDINAL, std::array{0xFFFFFFFFU});
}

void X11Dock::reserveTop(QWindow& window, const QScreen& screen, int height) {
    if (!x11Connection())
        return;
    // Qt reports a screen's origin in native pixels and its size in points.
    const double ratio = screen.devicePixelRatio();
    const auto top = static_cast<std::uint32_t>(screen.geometry().top()) + pixels(height, ratio);
    const auto left = static_cast<std::uint32_t>(screen.geometry().left());
    // With a fractional ratio, the width in points may be rounded up beyond the screen's edge.
    const std::uint32_t right =
        std::min(left + pixels(screen.geometry().width(), ratio) - 1, lastColumn());
    setProperty(window, "_NET_WM_STRUT", XCB_ATOM_CARDINAL,
                std::array<std::uint32_t, 4>{0, 0, top, 0});
    setProperty(window, "_NET_WM_STRUT_PARTIAL", XCB_ATOM_CARDINAL,
                std::array<std::uint32_t, 12>{0, 0, top, 0, 0, 0, 0, 0, left, right, 0, 0});
    xcb_flush(x11Connection());
}

bool X11Dock::grabKeyboard(QWindow& window) {
    xcb_connection_t* x = x11Connection();
    if (!x)
        return true; // popup windows receive the keys
    const auto reply = ownedReply(xcb_grab_keyboard_reply(
        x,
        xcb_grab_keyboard(x, 0, static_cast<xcb_window_t>(window.winId()), XCB_CURRENT_TIME,
                          XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
        nullptr));
    return reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
}

void X11Dock::releaseKeyboard() {
    xcb_connection_t* x = x11Connection();
    if (!x)
        return;
    xcb_ungrab_keyboard(x, XCB_CURRENT_TIME);
    xcb_flush(x);
}

bool X11Dock::isCloseRequest(const void* event) {
    xcb_connection_t* x = x11Connection();
    const auto* message = static_cast<const xcb_client_message_event_t*>(event);
    return x && (message->response_type & 0x7F) == XCB_CLIENT_MESSAGE &&
           message->type == x11Atom(x, "WM_PROTOCOLS") &&
           message->data.data32[0] == x11Atom(x, "WM_DELETE_WINDOW");
}

} // namespace apps
