#include "platform/qt/BusConnection.h"

#include "platform/qt/Strings.h"
#include "platform/runtime/DetachedThread.h"

#include <QDBusConnection>
#include <QString>

#include <atomic>
#include <condition_variable>
#include <memory>
#include <utility>

namespace platform::qt {
namespace {

std::string uniqueName(const std::string& purpose) {
    static std::atomic<int> count = 0;
    return "halvex-" + purpose + '-' + std::to_string(++count);
}

} // namespace

BusConnection::BusConnection(std::string busAddress, std::string purpose)
    : busAddress_(std::move(busAddress)), purpose_(std::move(purpose)) {}

BusConnection::~BusConnection() {
    if (!name_.empty() && !isConnecting())
        QDBusConnection::disconnectFromBus(qString(name_));
}

/// The state of one attempt to connect. May outlive the BusConnection.
class BusConnection::Attempt {
  public:
    void end() {
        const std::lock_guard lock(mutex_);
        hasEnded_ = true;
        ended_.notify_all();
    }
    bool hasEnded() {
        const std::lock_guard lock(mutex_);
        return hasEnded_;
    }
    void waitFor(std::chrono::seconds time) {
        std::unique_lock lock(mutex_);
        ended_.wait_for(lock, time, [this] { return hasEnded_; });
    }

  private:
    std::mutex mutex_;
    std::condition_variable ended_;
    bool hasEnded_ = false;
};

// Connects on a separate thread, because Qt waits for the first reply of the bus without a timeout.
void BusConnection::connect() {
    name_ = uniqueName(purpose_);
    attempt_ = std::make_shared<Attempt>();
    // Ends the attempt when the work is destroyed, even if no thread could be started for it.
    std::shared_ptr<void> ending(nullptr, [attempt = attempt_](void*) { attempt->end(); });
    detachThread(
        [ending = std::move(ending), name = qString(name_), address = qString(busAddress_)] {
            if (address.isEmpty())
                QDBusConnection::connectToBus(QDBusConnection::SessionBus, name);
            else
                QDBusConnection::connectToBus(address, name);
        });
    attempt_->waitFor(kTimeout);
}

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
    return !attempt_->hasEnded();
}

} // namespace platform::qt
