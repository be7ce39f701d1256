#include "apps/halvex/Requests.h"

#include <QDBusConnection>
#include <QDBusMessage>

#include <utility>

namespace {

constexpr const char* kPath = "/com/quorvanesoftware/Notifications";
constexpr const char* kInterface = "com.quorvanesoftware.Notifications1";
constexpr const char* kSignal = "Posted";

} // namespace

Requests::Requests(std::map<std::string, std::function<void()>> handlers)
    : handlers_(std::move(handlers)) {
    QDBusConnection::sessionBus().connect("", kPath, kInterface, kSignal, this,
                                          SLOT(heard(QString, QString, QString)));
}

void Requests::announceLaunch() {
    auto signal = QDBusMessage::createSignal(kPath, kInterface, kSignal);
    signal << "NSWorkspaceDidLaunchApplicationNotification"
           << ""
           << "<plist version=\"1.0\"><dict><key>NSApplicationName</key>"
              "<string>Halvex</string></dict></plist>";
    QDBusConnection::sessionBus().send(signal);
}

void Requests::heard(const QString& name, const QString&, const QString&) {
    const auto found = handlers_.find(name.toStdString());
    if (found != handlers_.end())
        found->second();
}
