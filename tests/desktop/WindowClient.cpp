// window_client INSTANCE CLASS TITLE...
// Shows a window for each title until they have all been closed.

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>
#include <xcb/xcb.h>

namespace {

xcb_connection_t* const connection = xcb_connect(nullptr, nullptr);

xcb_atom_t atom(std::string_view name) {
    const auto cookie =
        xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
        xcb_intern_atom_reply(connection, cookie, nullptr), &std::free);
    return reply->atom;
}

void setText(xcb_window_t window, std::string_view property, const std::string& text) {
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, atom(property),
                        atom("UTF8_STRING"), 8, static_cast<std::uint32_t>(text.size()),
                        text.data());
}

void setNumber(xcb_window_t window, std::string_view property, xcb_atom_t type,
               std::uint32_t number) {
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, atom(property), type, 32, 1,
                        &number);
}

xcb_window_t show(const std::string& windowClass, const char* title) {
    const auto window = xcb_generate_id(connection);
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, window,
                      xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root, 0, 0, 90, 60,
                      0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    setText(window, "WM_CLASS", windowClass);
    setText(window, "_NET_WM_NAME", title);
    setNumber(window, "_NET_WM_PID", XCB_ATOM_CARDINAL, static_cast<std::uint32_t>(getpid()));
    setNumber(window, "WM_PROTOCOLS", XCB_ATOM_ATOM, atom("WM_DELETE_WINDOW"));
    if (const char* const token = std::getenv("DESKTOP_STARTUP_ID"))
        setText(window, "_NET_STARTUP_ID", token);
    xcb_map_window(connection, window);
    return window;
}

} // namespace

int main(int argc, char** argv) {
    std::vector<xcb_window_t> windows;
    for (int i = 3; i < argc; ++i)
        windows.push_back(show(std::string(argv[1]) + '\0' + argv[2] + '\0', argv[i]));
    xcb_flush(connection);
    while (!windows.empty()) {
        const auto* event = xcb_wait_for_event(connection);
        if (!event)
            return 1;
        if ((event->response_type & 0x7F) == XCB_CLIENT_MESSAGE) {
            const auto window = reinterpret_cast<const xcb_client_message_event_t*>(event)->window;
            xcb_destroy_window(connection, window);
            xcb_flush(connection);
            std::erase(windows, window);
        }
    }
}
