#include "apps/support/BusName.h"

#include "platform/Log.h"

#include <QCoreApplication>
#include <QDBusConnection>

#include <utility>

namespace apps {

BusName::BusName(QString name) : name_(std::move(name)) {}

BusName::Claim BusName::claim(const QString& objectPath, QObject& object) {
    auto bus = QDBusConnection::sessionBus();
    if (!bus.isConnected() || !bus.registerObject(objectPath, &object))
        return Claim::NoBus;
    bus.connect("", "/org/freedesktop/DBus/Local", "org.freedesktop.DBus.Local", "Disconnected",
                this, SLOT(endSession()));
    return bus.registerService(name_) ? Claim::Acquired : Claim::Taken;
}

void BusName::endSession() {
    platform::logLine("%@ quits: the session bus disconnected", name_.toStdString());
    QCoreApplication::quit();
}

} // namespace apps
