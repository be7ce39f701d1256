#include "platform/qt/Foreground.h"

#include "platform/Bundle.h"
#include "platform/posix/ApplicationBundle.h"
#include "platform/posix/PosixProcessList.h"
#include "platform/qt/BusCall.h"
#include "platform/qt/Strings.h"
#include "platform/qt/X11Connection.h"
#include "platform/qt/X11WindowManager.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QVariantMap>

#include <optional>
#include <string>

namespace platform::qt {
namespace {

void activateTopmostWindow(ProcessSerialNumber process) {
    xcb_connection_t* const connection = x11Connection();
    const auto identifier = posix::processIdentifier(process);
    if (!connection || !identifier)
        return;
    const X11WindowManager manager(connection);
    if (const xcb_window_t window = manager.topmostWindow(*identifier))
        manager.activate(window);
}

/// Returns the identifier of the application bundle whose program the process runs.
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
        activateTopmostWindow(process);
        return;
    }
    const QString name = qString(*identifier);
    auto call = QDBusMessage::createMethodCall(name, '/' + QString(name).replace('.', '/'),
                                               "org.freedesktop.Application", "Activate");
    call.setAutoStartService(false);
    call << QVariantMap();
    callAsynchronously(bus, call, [process](const QDBusMessage& reply) {
        if (reply.type() == QDBusMessage::ErrorMessage)
            activateTopmostWindow(process);
    });
}

} // namespace platform::qt
