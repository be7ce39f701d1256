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

constexpr const char* kNoReply = "the menu bar hangs: it does not answer";

BarItem readItem(const QDBusArgument& rows) {
    QString identifier, path;
    BarItem item;
    rows.beginStructure();
    rows >> identifier >> path >> item.position >> item.width;
    rows.endStructure();
    item.identifier = identifier.toStdString();
    item.path = path.toStdString();
    return item;
}

} // namespace

BarClient::BarClient(std::string busAddress) : bus_(std::move(busAddress), "bar-client") {}

BarClient::~BarClient() = default;

BarClient::Answer BarClient::call(const char* member, const QVariantList& arguments,
                                  const char* signature) {
    if (isHanging())
        return {std::nullopt, kNoReply};
    const QDBusConnection bus = bus_.get();
    if (!bus.isConnected())
        return {std::nullopt, "there is no session bus"};
    auto message =
        QDBusMessage::createMethodCall(kBarBusName, kBarObjectPath, kBarInterface, member);
    message.setArguments(arguments);
    const auto start = std::chrono::steady_clock::now();
    const QDBusMessage reply = bus.call(message, QDBus::Block, kTimeout);
    // Of a bar that dies meanwhile the bus says the same, but mostly much earlier.
    const bool waited =
        std::chrono::steady_clock::now() - start > std::chrono::milliseconds(kTimeout / 2);
    if (waited && QDBusError(reply).type() == QDBusError::NoReply) {
        noteHanging();
        return {std::nullopt, kNoReply};
    }
    if (reply.type() != QDBusMessage::ReplyMessage)
        return {std::nullopt,
                "the menu bar does not answer: " + reply.errorMessage().toStdString()};
    if (reply.signature() != signature)
        return {std::nullopt, std::string("the menu bar answers ") + member + " with \"" +
                                  reply.signature().toStdString() + "\" and not \"" + signature +
                                  '"'};
    return {reply.arguments(), {}};
}

/// Another bar that has come in its place does not.
bool BarClient::isHanging() {
    std::unique_lock lock(mutex_);
    const std::uint32_t process = hangingProcess_;
    if (std::chrono::steady_clock::now() >= hangsUntil_)
        return false;
    lock.unlock();
    return processIdentifier().value == process;
}

void BarClient::noteHanging() {
    const std::uint32_t process = processIdentifier().value.value_or(0);
    const std::lock_guard lock(mutex_);
    hangingProcess_ = process;
    hangsUntil_ = std::chrono::steady_clock::now() + kRest;
}

BarClient::Answer BarClient::callLogged(const char* member, const QVariantList& arguments,
                                        const char* signature) {
    Answer answer = call(member, arguments, signature);
    std::unique_lock lock(mutex_);
    const bool isNews = answer.reason != std::exchange(loggedReason_, answer.reason);
    lock.unlock();
    if (isNews && !answer)
        logLine("%@", answer.reason);
    return answer;
}

std::int32_t BarClient::getMenuExtra(const std::string& identifier, MenuExtraReference& reference) {
    reference = 0;
    const Answer answer = callLogged("GetMenuExtra", {qString(identifier)}, "iu");
    if (!answer)
        return kNoAnswer;
    reference = answer.value->at(1).toUInt();
    return answer.value->at(0).toInt();
}

std::int32_t BarClient::addMenuExtra(const std::string& url, std::int32_t position,
                                     std::int32_t first, std::int32_t second, std::int32_t third,
                                     std::int32_t fourth) {
    const Answer answer =
        callLogged("AddMenuExtra", {qString(url), position, first, second, third, fourth}, "i");
    return answer ? answer.value->at(0).toInt() : kNoAnswer;
}

std::int32_t BarClient::removeMenuExtra(MenuExtraReference reference, std::int32_t flags) {
    const Answer answer = callLogged("RemoveMenuExtra", {reference, flags}, "i");
    return answer ? answer.value->at(0).toInt() : kNoAnswer;
}

bool BarClient::hasBus() {
    return bus_.get().isConnected();
}

BarAnswer<std::uint32_t> BarClient::processIdentifier() {
    auto message =
        QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                       "org.freedesktop.DBus", "GetConnectionUnixProcessID");
    message << kBarBusName;
    const QDBusMessage reply = bus_.get().call(message, QDBus::Block, kTimeout);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.signature() != "u")
        return {std::nullopt, reply.errorMessage().toStdString()};
    return {reply.arguments().at(0).toUInt(), {}};
}

BarAnswer<std::vector<BarItem>> BarClient::listMenuExtras() {
    const Answer answer = call("ListMenuExtras", {}, "a(ssid)");
    if (!answer)
        return {std::nullopt, answer.reason};
    std::vector<BarItem> items;
    const auto rows = answer.value->at(0).value<QDBusArgument>();
    rows.beginArray();
    while (!rows.atEnd())
        items.push_back(readItem(rows));
    return {std::move(items), {}};
}

BarAnswer<bool> BarClient::click(const std::string& identifier, const Event& event) {
    return askYesOrNo(
        "Click", {qString(identifier), event.modifierFlags, event.clickCount, event.buttonNumber});
}

BarAnswer<bool> BarClient::snapshot(const std::string& path) {
    return askYesOrNo("Snapshot", {qString(path)});
}

BarAnswer<bool> BarClient::askYesOrNo(const char* member, const QVariantList& arguments) {
    const Answer answer = call(member, arguments, "b");
    if (!answer)
        return {std::nullopt, answer.reason};
    return {answer.value->at(0).toBool(), {}};
}

} // namespace platform::qt
