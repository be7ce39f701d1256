#include "platform/qt/BusPeer.h"

#include "platform/MainThread.h"
#include "platform/qt/BusCall.h"
#include "platform/qt/BusProbe.h"
#include "platform/qt/SignalReceiver.h"
#include "platform/qt/Strings.h"
#include "platform/runtime/DetachedThread.h"

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>

#include <utility>

namespace platform::qt {
namespace {

constexpr const char* kBus = "org.freedesktop.DBus";
constexpr const char* kBusPath = "/org/freedesktop/DBus";

} // namespace

BusPeer::BusPeer(std::string busAddress, QString name, std::string title, Handlers handlers,
                 std::chrono::milliseconds busTimeLimit)
    : busAddress_(std::move(busAddress)), name_(std::move(name)), title_(std::move(title)),
      handlers_(std::move(handlers)), busTimeLimit_(busTimeLimit),
      self_(std::make_shared<BusPeer*>(this)) {
    connect();
}

BusPeer::~BusPeer() {
    if (!bus_)
        return; // closed right after it was opened
    bus_.reset();
    QDBusConnection::disconnectFromBus(connectionName_);
}

// Connects on a separate thread, which waits for the replies of the bus.
void BusPeer::connect() {
    static int count = 0;
    connectionName_ = QString("halvex-peer-%1").arg(++count);
    // Runs when the work is destroyed, even if no thread could be started for it.
    const std::shared_ptr<void> ending(
        nullptr, [weak = std::weak_ptr(self_), name = connectionName_](void*) {
            const auto finish = [weak, name] {
                if (const auto self = weak.lock())
                    (*self)->connected();
                else
                    QDBusConnection::disconnectFromBus(name);
            };
            mainThread().perform(finish, MainThread::Wait::No);
        });
    detachThread([ending, name = connectionName_, address = busAddress_, limit = busTimeLimit_] {
        if (!busReplies(address, limit))
            return;
        if (address.empty())
            QDBusConnection::connectToBus(QDBusConnection::SystemBus, name);
        else
            QDBusConnection::connectToBus(qString(address), name);
    });
}

void BusPeer::connected() {
    bus_ = std::make_unique<QDBusConnection>(connectionName_);
    if (!bus_->isConnected())
        return handlers_.unavailable("there is no system bus, or it does not reply");
    busReceiver_ = std::make_unique<SignalReceiver>([this](const auto& signal) { //
        receiveFromBus(signal);
    });
    // Without the name of a service: Qt would block to look up its owner.
    bus_->connect("", kBusPath, kBus, "NameOwnerChanged", {name_}, {}, busReceiver_.get(),
                  SLOT(receive(QDBusMessage)));
    bus_->connect("", "/org/freedesktop/DBus/Local", "org.freedesktop.DBus.Local", "Disconnected",
                  busReceiver_.get(), SLOT(receive(QDBusMessage)));
    auto call = QDBusMessage::createMethodCall(kBus, kBusPath, kBus, "GetNameOwner");
    call << name_;
    callAsynchronously(
        *bus_, call,
        [this, weak = std::weak_ptr(self_)](const QDBusMessage& reply) {
            if (weak.expired() || !owner_.isEmpty())
                return;
            if (reply.signature() == "s" && reply.type() == QDBusMessage::ReplyMessage)
                setOwner(reply.arguments().at(0).toString());
            else if (reply.errorName() == "org.freedesktop.DBus.Error.NameHasNoOwner")
                handlers_.unavailable(title_ + " is not running");
            else
                handlers_.unavailable("the system bus has failed: " + failureOf(reply));
        },
        busTimeLimit_);
}

void BusPeer::receiveFromBus(const QDBusMessage& signal) {
    if (signal.member() == "Disconnected") {
        if (owner_.isEmpty())
            return;
        setOwner({});
    } else if (signal.service() == kBus && signal.signature() == "sss") {
        setOwner(signal.arguments().at(2).toString());
    }
}

void BusPeer::setOwner(const QString& owner) {
    if (owner == owner_)
        return;
    owner_ = owner;
    receiver_.reset();
    epoch_.reset();
    if (owner_.isEmpty())
        return handlers_.unavailable(title_ + " has exited");
    epoch_ = std::make_shared<int>();
    receiver_ = std::make_unique<SignalReceiver>([this](const QDBusMessage& signal) {
        if (signal.service() == owner_)
            handlers_.received(signal);
    });
    handlers_.appeared();
}

void BusPeer::subscribe(const char* interface, const char* member, const QString& firstArgument) {
    const QStringList arguments =
        firstArgument.isEmpty() ? QStringList() : QStringList(firstArgument);
    bus_->connect(owner_, "", interface, member, arguments, {}, receiver_.get(),
                  SLOT(receive(QDBusMessage)));
}

void BusPeer::call(const QDBusMessage& message, std::chrono::milliseconds timeLimit,
                   std::function<void(const QDBusMessage& reply)> onReply) {
    callAsynchronously(
        *bus_, message,
        [weak = std::weak_ptr(epoch_), onReply = std::move(onReply)](const QDBusMessage& reply) {
            if (!weak.expired())
                onReply(reply);
        },
        timeLimit);
}

std::string failureOf(const QDBusMessage& reply) {
    if (reply.type() == QDBusMessage::ErrorMessage)
        return reply.errorMessage().toStdString();
    return "its reply has the signature \"" + reply.signature().toStdString() + '"';
}

} // namespace platform::qt
