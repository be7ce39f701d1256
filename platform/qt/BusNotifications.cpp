#include "platform/qt/BusNotifications.h"

#include "platform/Log.h"
#include "platform/PropertyListService.h"
#include "platform/qt/BusNames.h"
#include "platform/qt/SignalReceiver.h"
#include "platform/qt/Strings.h"
#include "platform/qt/UserInfo.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QString>
#include <QStringList>

#include <algorithm>
#include <array>
#include <utility>

namespace platform::qt {
namespace {

// Of each argument. Limits the memory and the time that one notification takes.
constexpr std::size_t kMaximumBytes = std::size_t{16} << 20;

constexpr int kFlushTimeout = 1000; // milliseconds

/// Returns std::nullopt if the user information cannot be sent.
std::optional<QDBusMessage> encoded(const Notification& notification) {
    const auto userInfo = propertyLists().serialize(PropertyList(notification.userInfo));
    if (!userInfo || userInfo->size() > kMaximumBytes)
        return std::nullopt;
    auto message =
        QDBusMessage::createSignal(kNotificationPath, kNotificationInterface, kNotificationSignal);
    message << qString(notification.name) << qString(notification.object.value_or(""))
            << qString(*userInfo);
    return message;
}

/// Returns std::nullopt and sets @p reason if the signal is malformed.
std::optional<Notification> decoded(const QDBusMessage& message, std::string& reason) {
    if (message.signature() != kNotificationSignature) {
        reason = "its signature is \"" + message.signature().toStdString() + '"';
        return std::nullopt;
    }
    std::array<std::string, 3> texts;
    std::ranges::transform(message.arguments(), texts.begin(), [](const QVariant& argument) {
        return argument.toString().toStdString();
    });
    if (std::ranges::any_of(texts, [](const auto& text) { return text.size() > kMaximumBytes; })) {
        reason = "it exceeds 16 MiB";
        return std::nullopt;
    }
    auto& [name, object, userInfoText] = texts;
    auto userInfo = decodeUserInfo(userInfoText, reason);
    if (!userInfo)
        return std::nullopt;
    Notification notification{
        .name = std::move(name), .object = {}, .userInfo = std::move(*userInfo)};
    if (!object.empty())
        notification.object = std::move(object);
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
    {
        const std::lock_guard lock(mutex_);
        if (!ensureSubscribed(bus))
            return;
        subscribe(bus, name);
    }
    flush();
}

void BusNotifications::removeObserver(const std::weak_ptr<const void>& observer,
                                      const std::string& name) {
    observers_.remove(observer, name);
    const std::lock_guard lock(mutex_);
    if (observers_.observes(name) || subscribedNames_.erase(name) == 0)
        return;
    QDBusConnection bus(qString(connectionName_));
    bus.disconnect(QString(), kNotificationPath, kNotificationInterface, kNotificationSignal,
                   {qString(name)}, QString(), receiver_.get(), SLOT(receive(QDBusMessage)));
}

void BusNotifications::removeExpiredObservers() {
    observers_.removeExpired();
}

void BusNotifications::post(const Notification& notification) {
    const auto message = encoded(notification);
    if (!message) {
        logLine("notification %@ not sent: its user information is not valid XML or exceeds 16 MiB",
                notification.name);
        return;
    }
    QDBusConnection bus = connection_.get();
    const std::lock_guard lock(mutex_);
    if (ensureSubscribed(bus) && !bus.send(*message))
        logLine("notification %@ not sent: %@", notification.name,
                bus.lastError().message().toStdString());
}

void BusNotifications::flush() {
    std::unique_lock lock(mutex_);
    const QDBusConnection bus(qString(connectionName_));
    lock.unlock();
    if (bus.isConnected())
        bus.call(QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                                "org.freedesktop.DBus", "GetId"),
                 QDBus::Block, kFlushTimeout);
}

/// Returns whether the bus is connected. Subscribes again to all observed names if the connection
/// is a new one.
bool BusNotifications::ensureSubscribed(QDBusConnection& bus) {
    if (!bus.isConnected()) {
        if (!hasLoggedMissingBus_.exchange(true))
            logLine("notifications do not reach other programs: there is no session bus");
        return false;
    }
    const std::string name = bus.name().toStdString();
    if (connectionName_ == name)
        return true;
    connectionName_ = name;
    subscribedNames_.clear();
    for (const std::string& observed : observers_.names())
        subscribe(bus, observed);
    return true;
}

void BusNotifications::subscribe(QDBusConnection& bus, const std::string& name) {
    if (!receiver_) {
        receiver_ = std::make_unique<SignalReceiver>(
            [this](const QDBusMessage& message) { receive(message); });
        if (const auto* application = QCoreApplication::instance())
            receiver_->moveToThread(application->thread());
    }
    if (subscribedNames_.insert(name).second)
        bus.connect(QString(), kNotificationPath, kNotificationInterface, kNotificationSignal,
                    {qString(name)}, QString(), receiver_.get(), SLOT(receive(QDBusMessage)));
}

void BusNotifications::receive(const QDBusMessage& message) {
    std::string reason;
    if (const auto notification = decoded(message, reason))
        observers_.deliver(*notification);
    else
        logLine("notification from %@ ignored: %@", message.service().toStdString(), reason);
}

} // namespace platform::qt
