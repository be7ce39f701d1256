#include "platform/qt/Foreground.h"

#include "platform/Bundle.h"
#include "platform/posix/ApplicationBundle.h"
#include "platform/posix/PosixProcessList.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QGuiApplication>
#include <QVariantMap>

#include <cstdlib>
#include <memory>
#include <string_view>
#include <vector>
#include <xcb/xcb.h>

namespace platform::qt {
namespace {

/// The window manager's list of windows, and requests to it.
class WindowManager {
  public:
    explicit WindowManager(xcb_connection_t* x)
        : x_(x), root_(xcb_setup_roots_iterator(xcb_get_setup(x)).data->root) {}

    /// A process's topmost window; XCB_WINDOW_NONE when it has none.
    xcb_window_t topmostWindow(pid_t process) const {
        const auto windows = numbers(root_, "_NET_CLIENT_LIST_STACKING", XCB_ATOM_WINDOW);
        for (auto window = windows.rbegin(); window != windows.rend(); ++window) {
            const auto owner = numbers(*window, "_NET_WM_PID", XCB_ATOM_CARDINAL);
            if (!owner.empty() && owner.front() == static_cast<std::uint32_t>(process))
                return *window;
        }
        return XCB_WINDOW_NONE;
    }

    void activate(xcb_window_t window) const {
        constexpr std::uint32_t kFromApplication = 1;
        xcb_client_message_event_t event{};
        event.response_type = XCB_CLIENT_MESSAGE;
        event.format = 32;
        event.window = window;
        event.type = atom("_NET_ACTIVE_WINDOW");
        event.data.data32[0] = kFromApplication;
        xcb_send_event(x_, 0, root_,
                       XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                       reinterpret_cast<const char*>(&event));
        xcb_flush(x_);
    }

  private:
    xcb_atom_t atom(std::string_view name) const {
        const auto length = static_cast<std::uint16_t>(name.size());
        const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
            xcb_intern_atom_reply(x_, xcb_intern_atom(x_, 0, length, name.data()), nullptr),
            std::free);
        return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    }

    std::vector<std::uint32_t> numbers(xcb_window_t window, std::string_view property,
                                       xcb_atom_t type) const {
        constexpr std::uint32_t kMost = 4096;
        const auto cookie = xcb_get_property(x_, 0, window, atom(property), type, 0, kMost);
        const std::unique_ptr<xcb_get_property_reply_t, decltype(&std::free)> reply(
            xcb_get_property_reply(x_, cookie, nullptr), std::free);
        if (!reply || reply->format != 32)
            return {};
        const auto* first = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
        return {first, first + reply->value_len};
    }

    xcb_connection_t* x_;
    xcb_window_t root_;
};

void activateWindow(ProcessSerialNumber process) {
    const auto* application = qobject_cast<QGuiApplication*>(QCoreApplication::instance());
    const auto* x11 =
        application ? application->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    // "offscreen" has the interface but no connection.
    xcb_connection_t* x = x11 ? x11->connection() : nullptr;
    const auto identifier = posix::processIdentifier(process);
    if (!x || !identifier)
        return;
    const WindowManager manager(x);
    if (const xcb_window_t window = manager.topmostWindow(*identifier))
        manager.activate(window);
}

/// The name on the bus of a process that runs the program of an application bundle.
std::optional<std::string> applicationIdentifier(ProcessSerialNumber process) {
    const auto identifier = posix::processIdentifier(process);
    const auto program = identifier ? posix::programOf(*identifier) : std::nullopt;
    const auto bundle = program ? posix::applicationBundleOf(*program) : std::nullopt;
    const auto opened = bundle ? Bundle::bundleWithPath(*bundle) : nullptr;
    return opened ? opened->bundleIdentifier() : std::nullopt;
}

} // namespace

void bringApplicationToFront(ProcessSerialNumber process) {
    const auto identifier = applicationIdentifier(process);
    const auto bus = QDBusConnection::sessionBus();
    if (!identifier || !bus.isConnected()) {
        activateWindow(process);
        return;
    }
    const QString name = QString::fromStdString(*identifier);
    auto message = QDBusMessage::createMethodCall(name, '/' + QString(name).replace('.', '/'),
                                                  "org.freedesktop.Application", "Activate");
    message.setAutoStartService(false);
    message << QVariantMap();
    auto* call = new QDBusPendingCallWatcher(bus.asyncCall(message));
    QObject::connect(call, &QDBusPendingCallWatcher::finished, call, [call, process] {
        if (call->isError())
            activateWindow(process);
        call->deleteLater();
    });
}

} // namespace platform::qt
