#include "platform/qt/BusCall.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>

#include <utility>

namespace platform::qt {

void callAsynchronously(const QDBusConnection& bus, const QDBusMessage& call,
                        std::function<void(const QDBusMessage& reply)> onReply,
                        std::chrono::milliseconds timeLimit) {
    auto* watcher =
        new QDBusPendingCallWatcher(bus.asyncCall(call, static_cast<int>(timeLimit.count())));
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher,
                     [watcher, onReply = std::move(onReply)] {
                         onReply(watcher->reply());
                         watcher->deleteLater();
                     });
}

} // namespace platform::qt
