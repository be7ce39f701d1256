#include "platform/qt/BarClient.h"

#include "platform/Log.h"
#include "platform/qt/BarNames.h"
#include "platform/qt/Strings.h"
#include "platform/values/Event.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QString>
#include <QVariant>

#include <utility>

namespace platform::qt {
namespace {

constexpr const char* kHanging = "the menu bar does not reply: a call timed out";

} // namespace

BarClient::BarClient(std::string busAddress) : bus_(std::move(busAddress), "bar-client") {}

BarClient::~BarClient() = default;

BarClient::Reply BarClient::call(const char* member, const QVariantList& arguments,
                                 const char* signature) {
    if (isHanging())
        return {std::nullopt, kHanging};
    const QDBusConnection bus = bus_.get();
    if (!bus.isConnected())
        return {std::nullopt, "cannot call the menu bar: there is no session bus"};
    auto message =
        QDBusMessage::createMethodCall(kBarBusName, kBarObjectPath, kBarInterface, member);
    message.setArguments(arguments);
    const auto start = std::chrono::steady_clock::now();
    const QDBusMessage reply = bus.call(message, QDBus::Block, kTimeout);
    // NoReply is also the error if the bar exits during the call, but then it arrives earlier.
    const bool waited =
        std::chrono::steady_clock::now() - start > std::chrono::milliseconds(kTimeout / 2);
    if (waited && QDBusError(reply).type() == QDBusError::NoReply) {
        recordHang();
        return {std::nullopt, kHanging};
    }
    if (reply.errorName() == kBarError)
        return {std::nullopt, reply.errorMessage().toStdString()};
    if (reply.errorName().startsWith("org.freedesktop.DBus.Error.Spawn."))
        return {std::nullopt,
                "the session bus cannot start the menu bar, perhaps because the bus has "
                "no display: " +
                    reply.errorMessage().toStdString()};
    if (reply.type() != QDBusMessage::ReplyMessage)
        return {std::nullopt, "cannot call the menu bar: " + reply.errorMessage().toStdString()};
    if (reply.signature() != signature)
        return {std::nullopt, std::string("the menu bar returned \"") +
                                  reply.signature().toStdString() + "\" from " + member +
                                  " instead of \"" + signature + '"'};
    return {reply.arguments(), {}};
}

// A bar that has replaced the hanging one has another process identifier.
bool BarClient::isHanging() {
    std::unique_lock lock(mutex_);
    const std::uint32_t process = hangingProcess_;
    if (std::chrono::steady_clock::now() >= hangsUntil_)
        return false;
    lock.unlock();
    return processIdentifier().value == process;
}

void BarClient::recordHang() {
    const std::uint32_t process = processIdentifier().value.value_or(0);
    const std::lock_guard lock(mutex_);
    hangingProcess_ = process;
    hangsUntil_ = std::chrono::steady_clock::now() + kHangPause;
}

BarClient::Reply BarClient::callLogged(const char* member, const QVariantList& arguments,
                                       const char* signature) {
    Reply reply = call(member, arguments, signature);
    std::unique_lock lock(mutex_);
    const bool isNewReason = reply.reason != std::exchange(loggedReason_, reply.reason);
    lock.unlock();
    if (isNewReason && !reply)
        logLine("%@", reply.reason);
    return reply;
}

std::int32_t BarClient::getMenuExtra(const std::string& identifier, MenuExtraReference& reference) {
    reference = 0;
    const Reply reply = callLogged("GetMenuExtra", {qString(identifier)}, "iu");
    if (!reply)
        return kNoReply;
    reference = reply.value->at(1).toUInt();
    return reply.value->at(0).toInt();
}

std::int32_t BarClient::addMenuExtra(const std::string& url, std::int32_t position,
                                     std::int32_t first, std::int32_t second, std::int32_t third,
                                     std::int32_t fourth) {
    const Reply reply =
        callLogged("AddMenuExtra", {qString(url), position, first, second, third, fourth}, "i");
    return reply ? reply.value->at(0).toInt() : kNoReply;
}

std::int32_t BarClient::removeMenuExtra(MenuExtraReference reference, std::int32_t flags) {
    const Reply reply = callLogged("RemoveMenuExtra", {reference, flags}, "i");
    return reply ? reply.value->at(0).toInt() : kNoReply;
}

bool BarClient::hasBus() {
    return bus_.get().isConnected();
}

BarReply<std::uint32_t> BarClient::processIdentifier() {
    auto message =
        QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                       "org.freedesktop.DBus", "GetConnectionUnixProcessID");
    message << kBarBusName;
    const QDBusMessage reply = bus_.get().call(message, QDBus::Block, kTimeout);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.signature() != "u")
        return {std::nullopt, reply.errorMessage().toStdString()};
    return {reply.arguments().at(0).toUInt(), {}};
}

template <class Row>
BarReply<std::vector<Row>> BarClient::callForRows(const char* member, const char* signature) {
    const Reply reply = call(member, {}, signature);
    if (!reply)
        return {std::nullopt, reply.reason};
    std::vector<Row> items;
    const auto rows = reply.value->at(0).value<QDBusArgument>();
    rows.beginArray();
    while (!rows.atEnd())
        rows >> items.emplace_back();
    return {std::move(items), {}};
}

BarReply<std::vector<BarItem>> BarClient::listMenuExtras() {
    return callForRows<BarItem>("ListMenuExtras", "a(ssid)");
}

BarReply<std::vector<KnownItem>> BarClient::items() {
    return callForRows<KnownItem>("Items", "a(sa{sv})");
}

BarReply<bool> BarClient::click(const std::string& identifier, const Event& event) {
    return callForBool(
        "Click", {qString(identifier), event.modifierFlags, event.clickCount, event.buttonNumber});
}

BarReply<bool> BarClient::snapshot(const std::string& path) {
    return callForBool("Snapshot", {qString(path)});
}

BarReply<bool> BarClient::snapshotItem(const std::string& identifier, const std::string& path) {
    return callForBool("SnapshotItem", {qString(identifier), qString(path)});
}

std::string BarClient::setPosition(const std::string& identifier, std::int32_t position) {
    return call("SetPosition", {qString(identifier), position}, "").reason;
}

std::string BarClient::focus() {
    return call("Focus", {}, "").reason;
}

std::string BarClient::enable(const std::string& identifier) {
    return call("Enable", {qString(identifier), true}, "").reason;
}

std::string BarClient::disable(const std::string& identifier) {
    return call("Enable", {qString(identifier), false}, "").reason;
}

BarReply<bool> BarClient::callForBool(const char* member, const QVariantList& arguments) {
    const Reply reply = call(member, arguments, "b");
    if (!reply)
        return {std::nullopt, reply.reason};
    return {reply.value->at(0).toBool(), {}};
}

} // namespace platform::qt
