#pragma once

#include "platform/Clock.h"
#include "platform/Wireless.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace platform::qt {

/// Returns the strength of the signal in percent for each interface that the text of
/// /proc/net/wireless lists. Ignores malformed lines.
std::map<std::string, int, std::less<>> strengthsOf(std::string_view procNetWireless);

struct KernelFiles {
    std::string interfaces = "/sys/class/net";
    std::string wireless = "/proc/net/wireless";
};

/// The wireless adapters as the kernel reports them, with the network that each is connected to,
/// but not its security nor other networks. Watches the state of the interfaces. Reads the strength
/// of the signal and the speed once a minute, and only while there is an adapter. Main thread only.
class KernelWireless : NonCopyable {
  public:
    /// @p changed is called on the main thread after the status may have changed.
    KernelWireless(KernelFiles files, std::function<void()> changed);
    ~KernelWireless();

    /// Reads the status from the kernel.
    WirelessStatus read() const;

  private:
    void watchInterfaces();
    void updateTicks();

    const KernelFiles files_;
    const std::function<void()> changed_;
    int netlink_ = -1;
    std::unique_ptr<Watch> readable_;
    std::unique_ptr<Watch> ticks_;
};

} // namespace platform::qt
