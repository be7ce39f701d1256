#include "platform/qt/NetworkManagerWireless.h"

#include "platform/Log.h"
#include "platform/qt/NetworkManagerNames.h"
#include "platform/qt/Strings.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVariant>

#include <utility>

namespace platform::qt {
namespace {

// Long: the desktop may ask the user for a permission first.
constexpr std::chrono::minutes kRequestLimit{5};

QDBusMessage methodCall(const QString& path, const char* interface, const char* member,
                        const QVariantList& arguments = {}) {
    auto call = QDBusMessage::createMethodCall(nm::kName, path, interface, member);
    call.setArguments(arguments);
    return call;
}

bool isReply(const QDBusMessage& reply, const char* signature) {
    return reply.type() == QDBusMessage::ReplyMessage && reply.signature() == signature;
}

QVariant objectPath(const QString& path) {
    return QVariant::fromValue(QDBusObjectPath(path.isEmpty() ? "/" : path));
}

} // namespace

NetworkManagerWireless::NetworkManagerWireless(std::string busAddress,
                                               std::chrono::milliseconds timeLimit,
                                               Handlers handlers)
    : timeLimit_(timeLimit), handlers_(std::move(handlers)),
      peer_(std::move(busAddress), nm::kName, "NetworkManager",
            {.appeared = [this] { appeared(); },
             .unavailable =
                 [this](const std::string& reason) {
                     phase_ = Phase::Absent;
                     handlers_.unavailable(reason);
                 },
             .received = [this](const QDBusMessage& signal) { receive(signal); }}) {
    qDBusRegisterMetaType<ObjectInterfaces>();
}

void NetworkManagerWireless::appeared() {
    peer_.subscribe(nm::kObjectManager, "InterfacesAdded");
    peer_.subscribe(nm::kObjectManager, "InterfacesRemoved");
    peer_.subscribe(nm::kConnection, "Updated");
    // Not the statistics of each device, which change all the time.
    for (const char* interface : {nm::kManager, nm::kDevice, nm::kWireless, nm::kAccessPoint,
                                  nm::kActive, nm::kIp4, nm::kIp6})
        peer_.subscribe(nm::kProperties, "PropertiesChanged", interface);
    query();
}

void NetworkManagerWireless::query() {
    phase_ = Phase::QueryingObjects;
    pendingSettings_ = 0;
    peer_.call(methodCall(nm::kObjectsPath, nm::kObjectManager, "GetManagedObjects"), timeLimit_,
               [this](const QDBusMessage& reply) { queried(reply); });
}

void NetworkManagerWireless::queried(const QDBusMessage& reply) {
    if (!isReply(reply, "a{oa{sa{sv}}}"))
        return fail("NetworkManager does not report its state: " + failureOf(reply));
    phase_ = Phase::QueryingSettings;
    objects_.replace(qdbus_cast<ManagedObjects>(reply.arguments().at(0)));
    for (const QString& connection : objects_.connections())
        querySettings(connection);
    changed();
}

void NetworkManagerWireless::querySettings(const QString& connection) {
    ++pendingSettings_;
    peer_.call(methodCall(connection, nm::kConnection, "GetSettings"), timeLimit_,
               [this, connection](const QDBusMessage& reply) {
                   --pendingSettings_;
                   receivedSettings(connection, reply);
                   changed();
               });
}

void NetworkManagerWireless::receivedSettings(const QString& connection,
                                              const QDBusMessage& reply) {
    // Errors are usual: of connections of other users, and of those that were removed meanwhile.
    if (reply.type() != QDBusMessage::ReplyMessage)
        return;
    if (reply.signature() == "a{sa{sv}}")
        objects_.setSettings(connection, qdbus_cast<ObjectInterfaces>(reply.arguments().at(0)));
    else if (!std::exchange(hasLoggedSettings_, true))
        logLine("wireless connection %@ ignored: %@", connection.toStdString(), failureOf(reply));
}

void NetworkManagerWireless::changed() {
    if (phase_ == Phase::QueryingSettings && pendingSettings_ == 0)
        phase_ = Phase::Ready;
    if (phase_ == Phase::Ready)
        handlers_.changed();
}

void NetworkManagerWireless::fail(const std::string& reason) {
    phase_ = Phase::Failed;
    handlers_.unavailable(reason);
}

void NetworkManagerWireless::receive(const QDBusMessage& signal) {
    if (phase_ == Phase::Failed)
        return query(); // it is alive
    if (phase_ == Phase::QueryingObjects)
        return; // the reply will contain it
    apply(signal);
    changed();
}

void NetworkManagerWireless::apply(const QDBusMessage& signal) {
    const QVariantList arguments = signal.arguments();
    const QString& signature = signal.signature();
    if (signal.member() == "PropertiesChanged" && signature == "sa{sv}as") {
        objects_.change(signal.path(), arguments.at(0).toString(),
                        qdbus_cast<QVariantMap>(arguments.at(1)));
    } else if (signal.member() == "InterfacesAdded" && signature == "oa{sa{sv}}") {
        const QString path = qdbus_cast<QDBusObjectPath>(arguments.at(0)).path();
        const auto interfaces = qdbus_cast<ObjectInterfaces>(arguments.at(1));
        objects_.add(path, interfaces);
        if (interfaces.contains(nm::kConnection))
            querySettings(path);
    } else if (signal.member() == "InterfacesRemoved" && signature == "oas") {
        objects_.remove(qdbus_cast<QDBusObjectPath>(arguments.at(0)).path(),
                        arguments.at(1).toStringList());
    } else if (signal.member() == "Updated") {
        querySettings(signal.path());
    }
}

void NetworkManagerWireless::request(const QDBusMessage& message, std::string failure) {
    auto call = message;
    call.setInteractiveAuthorizationAllowed(true);
    peer_.call(call, kRequestLimit, [failure = std::move(failure)](const QDBusMessage& reply) {
        if (reply.type() == QDBusMessage::ErrorMessage)
            logLine("%@: %@", failure, failureOf(reply));
    });
}

void NetworkManagerWireless::scan() {
    if (phase_ == Phase::Failed)
        return query();
    if (phase_ != Phase::Ready)
        return;
    for (const WirelessAdapter& adapter : status().adapters)
        peer_.call(methodCall(objects_.target(adapter.interface, {}).device, nm::kWireless,
                              "RequestScan", {QVariantMap()}),
                   timeLimit_, [](const QDBusMessage&) {});
}

bool NetworkManagerWireless::connect(const std::string& interface, const WirelessNetwork& network) {
    const auto [device, connection, accessPoint] = objects_.target(interface, network);
    const std::string failure = "cannot connect to \"" + network.name + '"';
    if (device.isEmpty() || (connection.isEmpty() && accessPoint.isEmpty())) {
        logLine(
            "%@: %@", failure,
            device.isEmpty() ? "there is no adapter " + interface : "it is neither visible nor known");
        return false;
    }
    if (connection.isEmpty()) {
        // Without settings: NetworkManager takes those of the access point.
        request(methodCall(nm::kManagerPath, nm::kManager, "AddAndActivateConnection",
                           {QVariant::fromValue(ObjectInterfaces()), objectPath(device),
                            objectPath(accessPoint)}),
                failure);
        return true;
    }
    request(methodCall(nm::kManagerPath, nm::kManager, "ActivateConnection",
                       {objectPath(connection), objectPath(device), objectPath(accessPoint)}),
            failure);
    return true;
}

bool NetworkManagerWireless::disconnect(const std::string& interface) {
    const std::string failure = "cannot disconnect " + interface;
    const QString device = objects_.target(interface, {}).device;
    if (device.isEmpty()) {
        logLine("%@: there is no such adapter", failure);
        return false;
    }
    request(methodCall(device, nm::kDevice, "Disconnect"), failure);
    return true;
}

bool NetworkManagerWireless::setRadio(WirelessRadio radio) {
    const QVariant value(radio == WirelessRadio::On);
    request(methodCall(nm::kManagerPath, nm::kProperties, "Set",
                       {nm::kManager, "WirelessEnabled", QVariant::fromValue(QDBusVariant(value))}),
            "cannot switch wireless networks");
    return true;
}

} // namespace platform::qt
