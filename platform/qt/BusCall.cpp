#include "platform/qt/BusCall.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>

#include <utility>

namespace platform::qt {

void callAsynchronously(const QDBusConnection& bus, const QDBusMessage& call,
                        std::function<void()> onError) {
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call));
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher,
                     [watcher, onError = std::move(onError)] {
                         if (watcher->isError())
                             onError();
                         watcher->deleteLater();
                     });
}

} // namespace platform::qt
