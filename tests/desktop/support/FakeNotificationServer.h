#pragma once

#include "tests/desktop/support/FakeService.h"
#include "tests/desktop/support/ProgramProcess.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QStringList>
#include <QVariantMap>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace test {

inline constexpr const char* kNotificationsName = "org.freedesktop.Notifications";
inline constexpr const char* kNotificationsPath = "/org/freedesktop/Notifications";

/// A notification server that records its calls as text. Ids count from @p firstId.
class FakeNotificationServer {
  public:
    FakeNotificationServer(const PrivateBus& bus, QStringList capabilities,
                           std::uint32_t firstId = 1)
        : capabilities_(std::move(capabilities)), nextId_(firstId),
          connection_(QDBusConnection::connectToBus(bus.address(), "notification server")) {}
    ~FakeNotificationServer() {
        connection_.unregisterService(kNotificationsName);
        QDBusConnection::disconnectFromBus("notification server");
    }

    void emitSignal(const char* member, const QVariantList& arguments) {
        auto signal = QDBusMessage::createSignal(kNotificationsPath, kNotificationsName, member);
        signal.setArguments(arguments);
        connection_.send(signal);
    }
    bool hasCalls(std::size_t count) {
        return eventually([&] { return calls.size() >= count; });
    }

    std::vector<std::string> calls;
    bool refuses = false;

  private:
    /// Returns the hints and an unusual display time as text.
    static std::string optionsOf(const QDBusMessage& call) {
        std::string text;
        const auto hints = qdbus_cast<QVariantMap>(call.arguments().at(6));
        for (const QString& name : hints.keys())
            text += '|' + (name + '=' + hints[name].toString()).toStdString();
        return call.arguments().at(7).toInt() == 0 ? text + "|stays" : text;
    }
    QVariant answer(const QDBusMessage& call) {
        const QVariantList arguments = call.arguments();
        if (call.member() == "GetCapabilities")
            return capabilities_;
        if (call.member() == "CloseNotification") {
            calls.push_back("close " + arguments.at(0).toString().toStdString());
            return 0;
        }
        if (call.signature() != "susssasa{sv}i" || refuses)
            return {};
        const std::uint32_t replaced = arguments.at(1).toUInt();
        const QString text =
            QString("%1 %2|%3|%4|%5")
                .arg(replaced)
                .arg(arguments.at(2).toString(), arguments.at(3).toString(),
                     arguments.at(4).toString(), arguments.at(5).toStringList().join(','));
        calls.push_back(text.toStdString() + optionsOf(call));
        return replaced ? replaced : nextId_++;
    }

    QStringList capabilities_;
    std::uint32_t nextId_;
    QDBusConnection connection_;
    FakeService service_{connection_, kNotificationsName, kNotificationsPath,
                         [this](const QDBusMessage& call) { return answer(call); }};
};

} // namespace test
