#pragma once

#include "platform/Wireless.h"
#include "platform/qt/KernelWireless.h"
#include "platform/runtime/HandlerList.h"

#include <QObject>

#include <chrono>
#include <memory>
#include <string>

class QTimer;

namespace platform::qt {

class NetworkManagerWireless;

/// Wireless networks through NetworkManager on the system bus, or while that is not available,
/// read-only from the kernel. Nothing is connected without an observer.
///
/// Logged: "wireless networks cannot be changed: %@" when NetworkManager is not available, with the
/// reason, and again only after it has been available; "wireless networks cannot be changed now"
/// for each request that is refused because of this; failed requests as documented by
/// NetworkManagerWireless.
class BusWireless final : public Wireless {
  public:
    struct Settings {
        std::string busAddress{}; ///< empty for the system bus
        std::chrono::milliseconds timeLimit =
            std::chrono::seconds(5); ///< of NetworkManager's state
        KernelFiles kernel{};
    };

    BusWireless();
    explicit BusWireless(Settings settings);
    ~BusWireless() override;

    const WirelessStatus& status() const override { return status_; }
    std::unique_ptr<Watch> observe(std::function<void()> handler) override;
    void scan() override;
    bool connect(const std::string& interface, const WirelessNetwork& network) override;
    bool disconnect(const std::string& interface) override;
    bool setRadio(WirelessRadio radio) override;

  private:
    void start();
    void stopUnlessObserved();
    void managerUnavailable(const std::string& reason);
    void scheduleUpdate();
    void update();
    bool canChange() const;

    const Settings settings_;
    HandlerList<> handlers_;
    WirelessStatus status_;
    bool hasLoggedReason_ = false;
    QObject context_;                                 ///< of timers
    std::unique_ptr<QTimer> updateTimer_;             ///< null unless observed
    std::unique_ptr<NetworkManagerWireless> manager_; ///< null unless observed
    std::unique_ptr<KernelWireless> kernel_;          ///< null unless observed without manager
};

} // namespace platform::qt
