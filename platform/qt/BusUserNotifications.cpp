#include "platform/qt/BusUserNotifications.h"

#include "platform/Log.h"
#include "platform/posix/StartProgram.h"
#include "platform/qt/BusCall.h"
#include "platform/qt/SignalReceiver.h"
#include "platform/qt/Strings.h"
#include "platform/runtime/Guard.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QStringList>
#include <QUrl>
#include <QVariantMap>

#include <algorithm>
#include <utility>

namespace platform::qt {
namespace {

constexpr const char* kName = "org.freedesktop.Notifications";
constexpr const char* kPath = "/org/freedesktop/Notifications";
constexpr int kBusTimeout = 1000; // milliseconds

QDBusMessage serverCall(const char* member, const QVariantList& arguments = {}) {
    auto call = QDBusMessage::createMethodCall(kName, kPath, kName, member);
    call.setArguments(arguments);
    return call;
}

/// Calls the bus itself. Returns the first value of the reply; invalid for an error.
QVariant askBus(const QDBusConnection& bus, const char* member, const QVariantList& arguments) {
    auto call = QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                               "org.freedesktop.DBus", member);
    call.setArguments(arguments);
    return bus.call(call, QDBus::Block, kBusTimeout).arguments().value(0);
}

QString iconArgument(const std::string& icon) {
    return icon.starts_with('/') ? QUrl::fromLocalFile(qString(icon)).toString(QUrl::FullyEncoded)
                                 : qString(icon);
}

QStringList actionsArgument(const std::vector<UserNotificationAction>& actions) {
    QStringList list;
    for (const auto& [identifier, label] : actions)
        list << qString(identifier) << qString(label);
    return list;
}

bool offers(const UserNotification& notification, const std::string& action) {
    return std::ranges::count(notification.actions, action, &UserNotificationAction::identifier) >
           0;
}

QVariantMap hintsArgument(const UserNotification& notification) {
    const auto& sound = notification.sound;
    if (!sound)
        return {};
    if (sound->empty())
        return {{"suppress-sound", true}};
    return {{sound->starts_with('/') ? "sound-file" : "sound-name", qString(*sound)}};
}

/// Plays a sound without the notification server, or beeps.
void play(const std::string& sound) {
    const std::string option = sound.starts_with('/') ? "--file=" : "--id=";
    if (posix::startProgram("canberra-gtk-play", {option + sound}) != 0)
        systemLog().beep();
}

void logFailure(const UserNotification& notification, const QDBusMessage& reply) {
    const bool isError = reply.type() == QDBusMessage::ErrorMessage;
    logLine("notification \"%@\" not shown: %@", notification.title,
            isError ? reply.errorMessage().toStdString()
                    : "the server's reply has the signature \"" + reply.signature().toStdString() +
                          '"');
}

} // namespace

/// One life of the notification server.
struct BusUserNotifications::Server {
    QStringList capabilities;
    bool hasReplied = false;
};

/// A posted notification.
struct BusUserNotifications::Entry {
    enum class Wanted { Nothing, Show, Close };

    UserNotification notification;
    std::string owner;
    std::uint32_t id = 0; ///< the server's; 0 while the notification is not shown
    bool isSending = false;
    Wanted wanted = Wanted::Show; ///< what to do once sending it has finished

    void report(UserNotificationEvent event) const {
        const auto observer = notification.observer.lock();
        // Copied: the handler may replace or withdraw its notification.
        if (const auto handler = notification.eventHandler; observer && handler)
            runGuarded(std::string(owner), [&] { handler(event); });
    }
};

BusUserNotifications::BusUserNotifications(std::string busAddress)
    : connection_(std::move(busAddress), "user-notifications") {}

BusUserNotifications::~BusUserNotifications() = default;

bool BusUserNotifications::post(const UserNotification& notification) {
    QDBusConnection bus = connection_.get();
    if (!isReachable(bus)) {
        if (!std::exchange(hasLoggedMissingServer_, true))
            logLine("notifications are not shown: there is no notification server");
        return false;
    }
    subscribe(bus);
    EntryPointer entry = find(notification.key);
    if (!entry)
        entry = entries_.emplace_back(std::make_shared<Entry>());
    entry->notification = notification;
    entry->owner = currentOwner();
    entry->wanted = Entry::Wanted::Show;
    if (!server_)
        queryServer();
    advance(entry);
    return true;
}

void BusUserNotifications::withdraw(std::string_view key) {
    if (const EntryPointer entry = find(key)) {
        entry->wanted = Entry::Wanted::Close;
        advance(entry);
    }
}

void BusUserNotifications::removeExpired() {
    for (const EntryPointer& entry : std::vector(entries_)) {
        UserNotification& notification = entry->notification;
        if (!(notification.handler || notification.eventHandler) ||
            !notification.observer.expired())
            continue;
        notification.handler = nullptr;
        notification.eventHandler = nullptr;
        entry->wanted = Entry::Wanted::Close;
        advance(entry);
    }
}

bool BusUserNotifications::isReachable(const QDBusConnection& bus) const {
    if (!bus.isConnected())
        return false;
    return (server_ && connectionName_ == bus.name().toStdString()) ||
           askBus(bus, "NameHasOwner", {kName}).toBool() ||
           askBus(bus, "ListActivatableNames", {}).toStringList().contains(kName);
}

/// Forgets everything that belongs to an earlier connection.
void BusUserNotifications::subscribe(QDBusConnection& bus) {
    if (connectionName_ == bus.name().toStdString())
        return;
    connectionName_ = bus.name().toStdString();
    entries_.clear();
    server_.reset();
    receiver_ = std::make_unique<SignalReceiver>([this](const auto& signal) { receive(signal); });
    for (const char* signal : {"ActionInvoked", "NotificationClosed"})
        bus.connect(kName, kPath, kName, signal, receiver_.get(), SLOT(receive(QDBusMessage)));
    watcher_ = std::make_unique<QDBusServiceWatcher>(kName, bus);
    QObject::connect(watcher_.get(), &QDBusServiceWatcher::serviceOwnerChanged, watcher_.get(),
                     [this](const QString&, const QString& oldOwner, const QString&) {
                         serverChanged(!oldOwner.isEmpty());
                     });
}

void BusUserNotifications::queryServer() {
    server_ = std::make_shared<Server>();
    callAsynchronously(bus(), serverCall("GetCapabilities"),
                       [this, server = std::weak_ptr(server_)](const QDBusMessage& reply) {
                           if (!server.expired())
                               serverReplied(reply);
                       });
}

void BusUserNotifications::serverReplied(const QDBusMessage& reply) {
    const auto entries = entries_;
    if (reply.signature() == "as") {
        server_->capabilities = reply.arguments().at(0).toStringList();
        server_->hasReplied = true;
        hasLoggedMissingServer_ = false;
        std::ranges::for_each(entries, [this](const auto& entry) { advance(entry); });
        return;
    }
    server_.reset();
    for (const EntryPointer& entry : entries) {
        logFailure(entry->notification, reply);
        eraseClosed(entry);
    }
}

void BusUserNotifications::serverChanged(bool hadServer) {
    if (!hadServer)
        return;
    server_.reset();
    for (const EntryPointer& entry : std::vector(entries_))
        if (entry->id && !entry->isSending)
            eraseClosed(entry);
    if (!entries_.empty())
        queryServer();
}

BusUserNotifications::EntryPointer BusUserNotifications::find(std::string_view key) const {
    const auto found = std::ranges::find_if(entries_, [&](const auto& entry) {
        return !key.empty() && entry->notification.key == key && entry->owner == currentOwner();
    });
    return found == entries_.end() ? nullptr : *found;
}

/// Does what is wanted, unless that has to wait for a reply.
void BusUserNotifications::advance(const EntryPointer& entry) {
    if (entry->isSending)
        return;
    if (entry->wanted == Entry::Wanted::Close) {
        if (entry->id)
            bus().send(serverCall("CloseNotification", {entry->id}));
        erase(entry);
    } else if (entry->wanted == Entry::Wanted::Show && server_ && server_->hasReplied) {
        send(entry);
    }
}

void BusUserNotifications::send(const EntryPointer& entry) {
    const UserNotification& notification = entry->notification;
    const QStringList& capabilities = server_->capabilities;
    const QString body = qString(notification.body);
    const QStringList actions = actionsArgument(notification.actions);
    const auto call =
        serverCall("Notify", {QCoreApplication::applicationName(), entry->id,
                              iconArgument(notification.icon), qString(notification.title),
                              capabilities.contains("body-markup") ? body.toHtmlEscaped() : body,
                              capabilities.contains("actions") ? actions : QStringList(),
                              hintsArgument(notification), notification.staysVisible ? 0 : -1});
    entry->isSending = true;
    entry->wanted = Entry::Wanted::Nothing;
    callAsynchronously(bus(), call, [this, weak = std::weak_ptr(entry)](const QDBusMessage& reply) {
        if (const EntryPointer sending = weak.lock())
            sent(sending, reply);
    });
}

void BusUserNotifications::sent(const EntryPointer& entry, const QDBusMessage& reply) {
    entry->isSending = false;
    const bool isShown = reply.signature() == "u";
    entry->id = isShown ? reply.arguments().at(0).toUInt() : 0;
    if (!isShown) {
        logFailure(entry->notification, reply);
        if (entry->wanted == Entry::Wanted::Nothing)
            return eraseClosed(entry);
    } else if (entry->wanted == Entry::Wanted::Nothing) {
        const auto& sound = entry->notification.sound;
        if (sound && !sound->empty() && server_ && !server_->capabilities.contains("sound"))
            play(*sound);
        entry->report(UserNotificationEvent::Shown);
    }
    advance(entry);
}

void BusUserNotifications::erase(const EntryPointer& entry) {
    std::erase(entries_, EntryPointer(entry)); // a copy: the argument may be the element
}

void BusUserNotifications::eraseClosed(const EntryPointer& entry) {
    const std::shared_ptr<const Entry> closed(entry); // the argument may be the element
    erase(entry);
    closed->report(UserNotificationEvent::Closed);
}

void BusUserNotifications::receive(const QDBusMessage& signal) {
    const std::uint32_t id = signal.arguments().value(0).toUInt();
    const auto found = std::ranges::find(entries_, id, &Entry::id);
    if (id == 0 || found == entries_.end())
        return;
    const EntryPointer entry = *found;
    if (signal.member() == "NotificationClosed") {
        entry->id = 0;
        if (!entry->isSending)
            eraseClosed(entry);
        return;
    }
    const std::string action = signal.arguments().value(1).toString().toStdString();
    const auto observer = entry->notification.observer.lock();
    // Copied: the handler may replace or withdraw its notification.
    if (const auto handler = entry->notification.handler;
        observer && handler && offers(entry->notification, action))
        runGuarded(std::string(entry->owner), [&] { handler(action); });
}

QDBusConnection BusUserNotifications::bus() const {
    return QDBusConnection(qString(connectionName_));
}

} // namespace platform::qt
