#include "apps/preferences/BarWatch.h"

#include "platform/qt/BarNames.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>

using namespace platform::qt;

namespace apps {

BarWatch::BarWatch() {
    auto bus = QDBusConnection::sessionBus();
    for (const char* member : {"MenuExtraLoaded", "MenuExtraUnloaded"})
        bus.connect(kBarBusName, kBarObjectPath, kBarInterface, member, this,
                    SLOT(itemChanged(QString)));
    auto* const watcher =
        new QDBusServiceWatcher(kBarBusName, bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this, &BarWatch::changed);
}

void BarWatch::itemChanged(const QString&) {
    emit changed();
}

} // namespace apps
