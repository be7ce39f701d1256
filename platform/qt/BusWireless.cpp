#include "platform/qt/BusWireless.h"

#include "platform/Log.h"
#include "platform/qt/NetworkManagerWireless.h"

#include <QTimer>

#include <utility>

namespace platform::qt {
namespace {

// One change of the network is a burst of signals.
constexpr std::chrono::milliseconds kBurst{50};

} // namespace

BusWireless::BusWireless() : BusWireless(Settings{}) {}

BusWireless::BusWireless(Settings settings)
    : settings_(std::move(settings)), handlers_([this] {
          // Later: this may be a handler, and an item may replace its observer by another one.
          QTimer::singleShot(0, &context_, [this] { stopUnlessObserved(); });
      }) {}

BusWireless::~BusWireless() = default;

std::unique_ptr<Watch> BusWireless::observe(std::function<void()> handler) {
    auto watch = handlers_.add(std::move(handler));
    if (!manager_)
        start();
    return watch;
}

void BusWireless::start() {
    updateTimer_ = std::make_unique<QTimer>();
    updateTimer_->setSingleShot(true);
    updateTimer_->setInterval(kBurst);
    QObject::connect(updateTimer_.get(), &QTimer::timeout, updateTimer_.get(),
                     [this] { update(); });
    manager_ = std::make_unique<NetworkManagerWireless>(
        settings_.busAddress, settings_.timeLimit,
        NetworkManagerWireless::Handlers{
            .changed = [this] { scheduleUpdate(); },
            .unavailable = [this](const std::string& reason) { managerUnavailable(reason); }});
}

void BusWireless::stopUnlessObserved() {
    if (!handlers_.isEmpty())
        return;
    manager_.reset();
    kernel_.reset();
    updateTimer_.reset();
    status_ = {};
}

void BusWireless::managerUnavailable(const std::string& reason) {
    if (!std::exchange(hasLoggedReason_, true))
        logLine("wireless networks cannot be changed: %@", reason);
    if (!kernel_)
        kernel_ = std::make_unique<KernelWireless>(settings_.kernel, [this] { scheduleUpdate(); });
    scheduleUpdate();
}

void BusWireless::scheduleUpdate() {
    if (!updateTimer_->isActive())
        updateTimer_->start();
}

void BusWireless::update() {
    if (manager_->isReady()) {
        kernel_.reset();
        hasLoggedReason_ = false;
    } else if (!kernel_) {
        return;
    }
    WirelessStatus now = kernel_ ? kernel_->read() : manager_->status();
    if (now == status_)
        return;
    status_ = std::move(now);
    handlers_.call();
}

bool BusWireless::canChange() const {
    if (status_.canChange && manager_ && manager_->isReady())
        return true;
    logLine("wireless networks cannot be changed now");
    return false;
}

void BusWireless::scan() {
    if (manager_)
        manager_->scan();
    if (kernel_)
        scheduleUpdate();
}

bool BusWireless::connect(const std::string& interface, const WirelessNetwork& network) {
    return canChange() && manager_->connect(interface, network);
}

bool BusWireless::disconnect(const std::string& interface) {
    return canChange() && manager_->disconnect(interface);
}

bool BusWireless::setRadio(WirelessRadio radio) {
    return canChange() && manager_->setRadio(radio);
}

} // namespace platform::qt
