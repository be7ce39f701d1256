#include "apps/support/BusName.h"

#include "platform/Log.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusReply>

#include <chrono>
#include <thread>
#include <utility>

namespace apps {
namespace {

constexpr std::chrono::seconds kPatience{3};
constexpr std::chrono::milliseconds kInterval{10};

BusName::Claim registered(QDBusConnectionInterface::RegisterServiceReply reply) {
    return reply == QDBusConnectionInterface::ServiceRegistered ? BusName::Claim::Acquired
                                                                : BusName::Claim::Taken;
}

} // namespace

BusName::BusName(QString name) : name_(std::move(name)) {}

BusName::Claim BusName::claim(const QString& objectPath, QObject& object, Replacement replacement) {
    auto bus = QDBusConnection::sessionBus();
    if (!bus.isConnected() || !bus.registerObject(objectPath, &object))
        return Claim::NoBus;
    bus.connect("", "/org/freedesktop/DBus/Local", "org.freedesktop.DBus.Local", "Disconnected",
                this, SLOT(endSession()));
    if (replacement == Replacement::Forbidden)
        return bus.registerService(name_) ? Claim::Acquired : Claim::Taken;
    bus.connect("", "/org/freedesktop/DBus", "org.freedesktop.DBus", "NameLost", this,
                SLOT(nameLost(QString)));
    return registered(bus.interface()->registerService(name_,
                                                       QDBusConnectionInterface::DontQueueService,
                                                       QDBusConnectionInterface::AllowReplacement));
}

BusName::Claim BusName::replaceOwner() {
    const auto bus = QDBusConnection::sessionBus();
    const QString owner = bus.interface()->serviceOwner(name_);
    const Claim claim = registered(
        bus.interface()->registerService(name_, QDBusConnectionInterface::ReplaceExistingService));
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (claim == Claim::Acquired && bus.interface()->isServiceRegistered(owner) &&
           std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(kInterval);
    return claim;
}

void BusName::nameLost(const QString& name) {
    if (name != name_)
        return;
    platform::logLine("%@ quits: another process has taken over its bus name", name_.toStdString());
    QCoreApplication::quit();
}

void BusName::endSession() {
    platform::logLine("%@ quits: the session bus disconnected", name_.toStdString());
    QCoreApplication::quit();
}

} // namespace apps
