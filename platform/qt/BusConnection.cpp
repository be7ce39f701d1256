#include "platform/qt/BusConnection.h"

#include "platform/DetachedThread.h"

#include <QDBusConnection>
#include <QString>

#include <atomic>
#include <memory>
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
    if (!name_.empty() && !isConnecting())
        QDBusConnection::disconnectFromBus(qString(name_));
}

// Qt waits for the bus's first word as long as it takes, so that is a thread's affair.
void BusConnection::connect() {
    name_ = uniqueName(purpose_);
    const auto task = std::make_shared<std::packaged_task<void()>>(
        [name = qString(name_), address = qString(busAddress_)] {
            if (address.isEmpty())
                QDBusConnection::connectToBus(QDBusConnection::SessionBus, name);
            else
                QDBusConnection::connectToBus(address, name);
        });
    connecting_ = task->get_future();
    detachThread([task] { (*task)(); });
    connecting_.wait_for(kPatience);
}

// A bus that has gone may be back under the same address.
QDBusConnection BusConnection::get() {
    const std::lock_guard lock(mutex_);
    if (name_.empty()) {
        connect();
    } else if (!isConnecting() && !QDBusConnection(qString(name_)).isConnected()) {
        QDBusConnection::disconnectFromBus(qString(name_));
        connect();
    }
    return QDBusConnection(isConnecting() ? QString() : qString(name_));
}

bool BusConnection::isConnecting() const {
    return connecting_.wait_for(std::chrono::seconds::zero()) != std::future_status::ready;
}

} // namespace platform::qt
