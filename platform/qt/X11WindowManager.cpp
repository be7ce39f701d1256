#include "platform/qt/X11WindowManager.h"

#include "platform/qt/X11Connection.h"

namespace platform::qt {

X11WindowManager::X11WindowManager(xcb_connection_t* connection)
    : connection_(connection),
      root_(xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root) {}

xcb_window_t X11WindowManager::topmostWindow(pid_t process) const {
    const auto windows = property(root_, "_NET_CLIENT_LIST_STACKING", XCB_ATOM_WINDOW);
    for (auto window = windows.rbegin(); window != windows.rend(); ++window) {
        const auto owner = property(*window, "_NET_WM_PID", XCB_ATOM_CARDINAL);
        if (!owner.empty() && owner.front() == static_cast<std::uint32_t>(process))
            return *window;
    }
    return XCB_WINDOW_NONE;
}

void X11WindowManager::activate(xcb_window_t window) const {
    constexpr std::uint32_t kFromApplication = 1;
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = x11Atom(connection_, "_NET_ACTIVE_WINDOW");
    event.data.data32[0] = kFromApplication;
    xcb_send_event(connection_, 0, root_,
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&event));
    xcb_flush(connection_);
}

std::vector<std::uint32_t> X11WindowManager::property(xcb_window_t window, std::string_view name,
                                                      xcb_atom_t type) const {
    constexpr std::uint32_t kMaximumCount = 4096;
    const auto cookie = xcb_get_property(connection_, 0, window, x11Atom(connection_, name), type,
                                         0, kMaximumCount);
    const auto reply = ownedReply(xcb_get_property_reply(connection_, cookie, nullptr));
    if (!reply || reply->format != 32)
        return {};
    const auto* first = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return {first, first + reply->value_len};
}

} // namespace platform::qt
