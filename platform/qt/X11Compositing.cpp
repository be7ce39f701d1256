#include "platform/qt/X11Compositing.h"

#include "platform/qt/X11Connection.h"

#include <QAbstractNativeEventFilter>
#include <QGuiApplication>
#include <QWidget>
#include <QWindow>

#include <cmath>
#include <utility>
#include <xcb/shape.h>
#include <xcb/xfixes.h>

namespace platform::qt {
namespace {

// A compositing manager owns this selection of its screen.
constexpr const char* kCompositingSelection = "_NET_WM_CM_S0";

class TranslucencyWatch final : public Watch, QAbstractNativeEventFilter {
  public:
    TranslucencyWatch(xcb_connection_t* connection, std::function<void()> handler)
        : selection_(x11Atom(connection, kCompositingSelection)), handler_(std::move(handler)) {
        const auto* extension = xcb_get_extension_data(connection, &xcb_xfixes_id);
        if (!extension || !extension->present)
            return;
        event_ = extension->first_event + XCB_XFIXES_SELECTION_NOTIFY;
        // The server sends events only to clients that have announced a version.
        ownedReply(xcb_xfixes_query_version_reply(
            connection, xcb_xfixes_query_version(connection, 1, 0), nullptr));
        xcb_xfixes_select_selection_input(
            connection, xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root, selection_,
            XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
        xcb_flush(connection);
        qApp->installNativeEventFilter(this);
    }

  private:
    bool nativeEventFilter(const QByteArray&, void* message, qintptr*) override {
        const auto* event = static_cast<const xcb_xfixes_selection_notify_event_t*>(message);
        if ((event->response_type & 0x7f) == event_ && event->selection == selection_)
            handler_();
        return false;
    }

    const xcb_atom_t selection_;
    const std::function<void()> handler_;
    int event_ = -1;
};

} // namespace

bool windowsAreTranslucent() {
    xcb_connection_t* const connection = x11Connection();
    if (!connection)
        return true;
    const xcb_atom_t selection = x11Atom(connection, kCompositingSelection);
    const auto owner = ownedReply(xcb_get_selection_owner_reply(
        connection, xcb_get_selection_owner(connection, selection), nullptr));
    return owner && owner->owner != XCB_WINDOW_NONE;
}

std::unique_ptr<Watch> watchTranslucency(std::function<void()> handler) {
    xcb_connection_t* const connection = x11Connection();
    return connection ? std::make_unique<TranslucencyWatch>(connection, std::move(handler))
                      : nullptr;
}

void setInputArea(const QWidget& window, const QRect& area) {
    xcb_connection_t* const connection = x11Connection();
    if (!connection || !window.windowHandle())
        return;
    const double scale = window.devicePixelRatioF();
    const auto pixels = [scale](int points) { return std::lround(points * scale); };
    const xcb_rectangle_t rectangle{static_cast<std::int16_t>(pixels(area.x())),
                                    static_cast<std::int16_t>(pixels(area.y())),
                                    static_cast<std::uint16_t>(pixels(area.width())),
                                    static_cast<std::uint16_t>(pixels(area.height()))};
    xcb_shape_rectangles(
        connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT, XCB_CLIP_ORDERING_UNSORTED,
        static_cast<xcb_window_t>(window.windowHandle()->winId()), 0, 0, 1, &rectangle);
    xcb_flush(connection);
}

} // namespace platform::qt
