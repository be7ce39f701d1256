#include "apps/preferences/BarWatch.h"

#include "platform/qt/BarNames.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>

using namespace platform::qt;

namespace apps {

BarWatch::BarWatch() {
    auto bus = QDBusConnection::sessionBus();
    bus.connect(kBarBusName, kBarObjectPath, kBarInterface, "ItemsChanged", this,
                SLOT(itemsChanged()));
    auto* const watcher =
        new QDBusServiceWatcher(kBarBusName, bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this, &BarWatch::changed);
}

void BarWatch::itemsChanged() {
    emit changed();
}

} // namespace apps
