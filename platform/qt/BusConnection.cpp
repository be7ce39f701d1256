#include "platform/qt/BusConnection.h"

#include <QDBusConnection>
#include <QString>

#include <atomic>
#include <utility>

namespace platform::qt {
namespace {

std::string uniqueName(const std::string& purpose) {
    static std::atomic<int> count = 0;
    return "halvex-" + purpose + '-' + std::to_string(++count);
}

QString qString(const std::string& text) {
    return QString::fromStdString(text);
}

} // namespace

BusConnection::BusConnection(std::string busAddress, std::string purpose)
    : busAddress_(std::move(busAddress)), purpose_(std::move(purpose)) {}

BusConnection::~BusConnection() {
    if (!name_.empty())
        QDBusConnection::disconnectFromBus(qString(name_));
}

// A bus that has gone may be back under the same address.
QDBusConnection BusConnection::get() {
    const std::lock_guard lock(mutex_);
    if (!name_.empty()) {
        QDBusConnection open(qString(name_));
        if (open.isConnected())
            return open;
        QDBusConnection::disconnectFromBus(qString(name_));
    }
    name_ = uniqueName(purpose_);
    const QString name = qString(name_);
    return busAddress_.empty() ? QDBusConnection::connectToBus(QDBusConnection::SessionBus, name)
                               : QDBusConnection::connectToBus(qString(busAddress_), name);
}

} // namespace platform::qt
