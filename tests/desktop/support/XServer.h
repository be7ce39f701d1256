#pragma once

#include "tests/desktop/support/ProgramProcess.h"

#include <QRect>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>
#include <xcb/xcb.h>

namespace test {

constexpr int kScreenWidth = 1000;
constexpr int kScreenHeight = 300;
/// Columns in the bar's own clock and in the item next to it.
constexpr int kAtClock = kScreenWidth - 40;
constexpr int kAtItem = kScreenWidth - 100;

template <class T>
std::unique_ptr<T, decltype(&std::free)> owned(T* reply) {
    return {reply, &std::free};
}

/// A private X server, with access to its windows and input. Its screen is green at first.
class XServer {
  public:
    static constexpr std::uint32_t kBackground = 0x00FF00;

    XServer() {
        server_.start("Xvfb",
                      {"-displayfd", "1", "-screen", "0",
                       QString("%1x%2x24").arg(kScreenWidth).arg(kScreenHeight), "-noreset"});
        server_.waitForReadyRead(5000);
        display_ = ":" + QString::fromUtf8(server_.readLine()).trimmed();
        connection_ = xcb_connect(display_.toUtf8().constData(), nullptr);
        root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
        xcb_change_window_attributes(connection_, root_, XCB_CW_BACK_PIXEL, &kBackground);
        xcb_clear_area(connection_, 0, root_, 0, 0, 0, 0);
        xcb_flush(connection_);
    }
    ~XServer() {
        xcb_disconnect(connection_);
        server_.kill();
        server_.waitForFinished(5000);
    }

    /// The settings of a program on this screen.
    Settings settings(const QString& scale = "1") const {
        return {{"QT_QPA_PLATFORM", "xcb"}, {"DISPLAY", display_}, {"QT_SCALE_FACTOR", scale}};
    }
    const QString& display() const { return display_; }
    xcb_connection_t* connection() const { return connection_; }
    QImage picture() const {
        const auto reply =
            owned(xcb_get_image_reply(connection_,
                                      xcb_get_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, root_,
                                                    0, 0, kScreenWidth, kScreenHeight, ~0U),
                                      nullptr));
        return QImage(xcb_get_image_data(reply.get()), kScreenWidth, kScreenHeight,
                      QImage::Format_RGB32)
            .copy();
    }
    std::uint32_t atom(const std::string& name) const {
        const auto size = static_cast<std::uint16_t>(name.size());
        return owned(xcb_intern_atom_reply(
                         connection_, xcb_intern_atom(connection_, 0, size, name.c_str()), nullptr))
            ->atom;
    }
    /// Returns the values of a property of the first window that has it.
    std::vector<std::uint32_t> property(const std::string& name) const {
        const auto tree =
            owned(xcb_query_tree_reply(connection_, xcb_query_tree(connection_, root_), nullptr));
        const auto* windows = xcb_query_tree_children(tree.get());
        for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
            const auto reply = owned(xcb_get_property_reply(
                connection_,
                xcb_get_property(connection_, 0, windows[i], atom(name), XCB_ATOM_ANY, 0, 64),
                nullptr));
            const auto* values =
                static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
            if (reply->value_len > 0)
                return {values, values + reply->value_len};
        }
        return {};
    }
    bool hasWindowManager() const {
        const auto reply = owned(xcb_get_property_reply(
            connection_,
            xcb_get_property(connection_, 0, root_, atom("_NET_SUPPORTING_WM_CHECK"),
                             XCB_ATOM_WINDOW, 0, 1),
            nullptr));
        return reply->value_len > 0;
    }
    /// Asks all windows to close, as a window manager does.
    void requestClose() const {
        const auto tree =
            owned(xcb_query_tree_reply(connection_, xcb_query_tree(connection_, root_), nullptr));
        for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
            xcb_client_message_event_t event{};
            event.response_type = XCB_CLIENT_MESSAGE;
            event.format = 32;
            event.window = xcb_query_tree_children(tree.get())[i];
            event.type = atom("WM_PROTOCOLS");
            event.data.data32[0] = atom("WM_DELETE_WINDOW");
            xcb_send_event(connection_, 0, event.window, 0, reinterpret_cast<char*>(&event));
        }
        xcb_flush(connection_);
    }
    /// Runs xdotool and returns its output.
    QString act(const QStringList& arguments) const {
        QProcess xdotool;
        xdotool.setProcessEnvironment(environmentWith(settings()));
        xdotool.start("xdotool", arguments);
        EXPECT_TRUE(xdotool.waitForFinished(5000));
        return QString::fromUtf8(xdotool.readAllStandardOutput());
    }

    void pointAt(int column, int row = 10) const {
        act({"mousemove", QString::number(column), QString::number(row)});
    }
    void clickAt(int column, int row = 10) const {
        pointAt(column, row);
        act({"click", "1"});
    }

    /// Owns the selection of a compositing manager, or gives it up. Nothing is composited.
    void claimCompositing(bool claims) const {
        const xcb_window_t window = claims ? xcb_generate_id(connection_) : 0;
        if (claims)
            xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window, root_, 0, 0, 1, 1, 0,
                              XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
        xcb_set_selection_owner(connection_, window, atom("_NET_WM_CM_S0"), XCB_CURRENT_TIME);
        xcb_flush(connection_);
    }

    /// Shows a window that records the keys that it receives. A window manager focuses it.
    void showTextField() const {
        const auto window = xcb_generate_id(connection_);
        const std::uint32_t events = XCB_EVENT_MASK_KEY_PRESS;
        xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window, root_, 100, 100, 200, 50, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK,
                          &events);
        xcb_map_window(connection_, window);
        xcb_flush(connection_);
    }
    /// Returns the letters that the window has received since the last call.
    std::string typed() const {
        std::string letters;
        while (const auto event = owned(xcb_poll_for_event(connection_))) {
            if ((event->response_type & 0x7f) != XCB_KEY_PRESS)
                continue;
            const auto* key = reinterpret_cast<const xcb_key_press_event_t*>(event.get());
            const auto symbols = owned(xcb_get_keyboard_mapping_reply(
                connection_, xcb_get_keyboard_mapping(connection_, key->detail, 1), nullptr));
            const auto symbol = xcb_get_keyboard_mapping_keysyms(symbols.get())[0];
            letters += symbol < 0x80 ? static_cast<char>(symbol) : '?';
        }
        return letters;
    }
    /// Grabs the keyboard, as a screen locker does, or releases it.
    void grabKeyboard(bool grabs) const {
        if (grabs)
            owned(
                xcb_grab_keyboard_reply(connection_,
                                        xcb_grab_keyboard(connection_, 0, root_, XCB_CURRENT_TIME,
                                                          XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
                                        nullptr));
        else
            xcb_ungrab_keyboard(connection_, XCB_CURRENT_TIME);
        xcb_flush(connection_);
    }

    /// Creates a window of @p process and lists it, as a window manager does.
    std::uint32_t manageWindowOf(std::uint32_t process) const {
        const std::uint32_t events =
            XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
        xcb_change_window_attributes(connection_, root_, XCB_CW_EVENT_MASK, &events);
        const auto window = xcb_generate_id(connection_);
        xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window, root_, 0, 0, 9, 9, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
        const auto set = [&](xcb_window_t of, const char* name, xcb_atom_t type,
                             std::uint32_t value) {
            xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, of, atom(name), type, 32, 1,
                                &value);
        };
        set(window, "_NET_WM_PID", XCB_ATOM_CARDINAL, process);
        set(root_, "_NET_CLIENT_LIST_STACKING", XCB_ATOM_WINDOW, window);
        xcb_flush(connection_);
        return window;
    }
    /// Returns whether @p message was sent for the window since the last call.
    bool isAsked(const std::string& message, std::uint32_t window) const {
        const std::uint32_t type = atom(message);
        bool found = false;
        while (const auto event = owned(xcb_poll_for_event(connection_))) {
            const auto* asked = reinterpret_cast<const xcb_client_message_event_t*>(event.get());
            found = found || ((event->response_type & 0x7f) == XCB_CLIENT_MESSAGE &&
                              asked->type == type && asked->window == window);
        }
        return found;
    }

  private:
    QString display_;
    QProcess server_;
    xcb_connection_t* connection_ = nullptr;
    xcb_window_t root_ = 0;
};

} // namespace test
