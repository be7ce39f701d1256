#include "platform/qt/BusNotifications.h"

#include "platform/Log.h"
#include "platform/PropertyListService.h"
#include "platform/qt/BusNames.h"
#include "platform/qt/SignalReceiver.h"
#include "platform/qt/Strings.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QString>
#include <QStringList>

#include <utility>

namespace platform::qt {
namespace {

// The bus would break the connection of who sends more.
constexpr std::size_t kMaximumUserInfoBytes = std::size_t{16} << 20;

constexpr int kFlushLimit = 1000; // milliseconds

/// Nothing when the user information cannot be carried.
std::optional<QDBusMessage> signalFor(const Notification& notification) {
    const auto userInfo = propertyLists().serialize(PropertyList(notification.userInfo));
    if (!userInfo || userInfo->size() > kMaximumUserInfoBytes)
        return std::nullopt;
    auto message =
        QDBusMessage::createSignal(kNotificationPath, kNotificationInterface, kNotificationSignal);
    message << qString(notification.name) << qString(notification.object.value_or(""))
            << qString(*userInfo);
    return message;
}

/// Nothing, with a reason, when the signal is none of ours.
std::optional<Notification> notificationIn(const QDBusMessage& message, std::string& reason) {
    if (message.signature() != kNotificationSignature) {
        reason = "its signature is \"" + message.signature().toStdString() + '"';
        return std::nullopt;
    }
    const auto text = [&](int place) { return message.arguments().at(place).toString(); };
    const auto parsed = propertyLists().parse(text(2).toStdString());
    const auto* userInfo = parsed ? parsed.value->dictionary() : nullptr;
    if (!userInfo) {
        reason = parsed ? "its user information is no dictionary" : parsed.error.reason;
        return std::nullopt;
    }
    Notification notification{.name = text(0).toStdString(), .object = {}, .userInfo = *userInfo};
    if (const std::string object = text(1).toStdString(); !object.empty())
        notification.object = object;
    return notification;
}

} // namespace

BusNotifications::BusNotifications(std::string busAddress)
    : connection_(std::move(busAddress), "notifications") {}

BusNotifications::~BusNotifications() = default;

void BusNotifications::addObserver(const std::weak_ptr<const void>& observer,
                                   const std::string& name, Handler handler) {
    observers_.add(observer, name, std::move(handler));
    QDBusConnection bus = connection_.get();
    const std::lock_guard lock(mutex_);
    if (connect(bus))
        listen(bus, name);
}

void BusNotifications::removeObserver(const std::weak_ptr<const void>& observer,
                                      const std::string& name) {
    observers_.remove(observer, name);
    const std::lock_guard lock(mutex_);
    if (observers_.observes(name) || heard_.erase(name) == 0)
        return;
    QDBusConnection bus(qString(heardOn_));
    bus.disconnect(QString(), kNotificationPath, kNotificationInterface, kNotificationSignal,
                   {qString(name)}, QString(), receiver_.get(), SLOT(receive(QDBusMessage)));
}

void BusNotifications::forgetGoneObservers() {
    observers_.removeExpired();
}

void BusNotifications::post(const Notification& notification) {
    const auto message = signalFor(notification);
    if (!message) {
        logLine("notification %@ is lost: its user information cannot be sent", notification.name);
        return;
    }
    QDBusConnection bus = connection_.get();
    const std::lock_guard lock(mutex_);
    if (connect(bus) && !bus.send(*message))
        logLine("notification %@ is lost: %@", notification.name,
                bus.lastError().message().toStdString());
}

void BusNotifications::flush() {
    std::unique_lock lock(mutex_);
    const QDBusConnection bus(qString(heardOn_));
    lock.unlock();
    if (bus.isConnected())
        bus.call(QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                                "org.freedesktop.DBus", "GetId"),
                 QDBus::Block, kFlushLimit);
}

/// Whether there is a bus; after one that has gone and come back it is asked for all names anew.
bool BusNotifications::connect(QDBusConnection& bus) {
    if (!bus.isConnected()) {
        if (!saidThatThereIsNoBus_.exchange(true))
            logLine("no session bus: notifications reach no other program");
        return false;
    }
    const std::string name = bus.name().toStdString();
    if (heardOn_ == name)
        return true;
    heardOn_ = name;
    heard_.clear();
    for (const std::string& observed : observers_.names())
        listen(bus, observed);
    return true;
}

void BusNotifications::listen(QDBusConnection& bus, const std::string& name) {
    if (!receiver_) {
        receiver_ = std::make_unique<SignalReceiver>(
            [this](const QDBusMessage& message) { received(message); });
        if (const auto* application = QCoreApplication::instance())
            receiver_->moveToThread(application->thread());
    }
    if (heard_.insert(name).second)
        bus.connect(QString(), kNotificationPath, kNotificationInterface, kNotificationSignal,
                    {qString(name)}, QString(), receiver_.get(), SLOT(receive(QDBusMessage)));
}

void BusNotifications::received(const QDBusMessage& message) {
    std::string reason;
    if (const auto notification = notificationIn(message, reason))
        observers_.deliver(*notification);
    else
        logLine("a notification from %@ makes no sense: %@", message.service().toStdString(),
                reason);
}

} // namespace platform::qt
