#include "platform/qt/Foreground.h"

#include "platform/Log.h"
#include "platform/posix/PosixProcessList.h"
#include "platform/qt/BusCall.h"
#include "platform/qt/Strings.h"
#include "platform/qt/X11Connection.h"
#include "platform/qt/X11WindowManager.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QVariantMap>

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

} // namespace

void bringApplicationToFront(ProcessSerialNumber process) {
    const auto identifier = posix::applicationIdentifier(process);
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
    callAsynchronously(bus, call, [process, application = *identifier](const QDBusMessage& reply) {
        if (reply.type() != QDBusMessage::ErrorMessage)
            return;
        logLine("cannot activate %@: %@", application, reply.errorMessage().toStdString());
        activateTopmostWindow(process);
    });
}

} // namespace platform::qt
