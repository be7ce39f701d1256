#include "platform/qt/KernelWireless.h"

#include "platform/MainThread.h"
#include "platform/qt/NetworkNames.h"
#include "platform/qt/Nl80211.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <ifaddrs.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <netdb.h>
#include <sstream>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace fs = std::filesystem;

namespace platform::qt {
namespace {

using Strengths = std::map<std::string, int, std::less<>>; // in percent, by interface

std::string firstLine(const fs::path& file) {
    std::ifstream stream(file);
    std::string line;
    std::getline(stream, line);
    return line;
}

std::vector<fs::path> entries(const fs::path& folder) {
    std::vector<fs::path> result;
    std::error_code error;
    for (fs::directory_iterator it(folder, error), end; !error && it != end; it.increment(error))
        result.push_back(it->path());
    return result;
}

bool isAdapter(const fs::path& interface) {
    std::error_code error;
    return fs::exists(interface / "wireless", error) || fs::exists(interface / "phy80211", error);
}

/// Whether a switch, in software or on the machine, turns the radio off.
bool isBlocked(const fs::path& interface) {
    return std::ranges::any_of(entries(interface / "phy80211"), [](const fs::path& entry) {
        return entry.filename().string().starts_with("rfkill") &&
               (firstLine(entry / "soft") == "1" || firstLine(entry / "hard") == "1");
    });
}

bool isUp(const fs::path& interface) {
    const std::string text = firstLine(interface / "flags"); // such as "0x1003"
    unsigned flags = 0;
    if (text.starts_with("0x"))
        std::from_chars(text.data() + 2, text.data() + text.size(), flags, 16);
    return flags & IFF_UP;
}

WirelessState stateOf(const fs::path& interface) {
    if (isBlocked(interface) || !isUp(interface))
        return WirelessState::Off;
    const std::string state = firstLine(interface / "operstate");
    if (state == "up")
        return WirelessState::Connected;
    return state == "dormant" ? WirelessState::Connecting : WirelessState::Disconnected;
}

/// Link-local addresses end with "%" and the interface.
std::string withoutScope(const std::string& address) {
    return address.substr(0, address.find('%'));
}

std::vector<std::string> addressesOf(const std::string& interface) {
    ifaddrs* list = nullptr;
    if (::getifaddrs(&list) != 0)
        return {};
    std::vector<std::string> result;
    for (const auto& [family, size] :
         {std::pair(AF_INET, sizeof(sockaddr_in)), std::pair(AF_INET6, sizeof(sockaddr_in6))})
        for (const ifaddrs* one = list; one; one = one->ifa_next) {
            std::array<char, NI_MAXHOST> text{};
            if (one->ifa_addr && one->ifa_addr->sa_family == family && one->ifa_name == interface &&
                ::getnameinfo(one->ifa_addr, static_cast<socklen_t>(size), text.data(), text.size(),
                              nullptr, 0, NI_NUMERICHOST) == 0)
                result.push_back(withoutScope(text.data()));
        }
    ::freeifaddrs(list);
    return result;
}

/// @p level is in dBm if it is negative. Drivers that report no level report a @p quality of at
/// most 70.
int percent(double quality, double level) {
    constexpr double kStrongest = -40, kWeakest = -100, kHighestQuality = 70;
    const double fraction = level < 0 && level > -256 ? (level - kWeakest) / (kStrongest - kWeakest)
                                                      : quality / kHighestQuality;
    return static_cast<int>(std::lround(std::clamp(fraction, 0.0, 1.0) * 100));
}

WirelessAdapter adapterAt(const fs::path& interface, const Strengths& strengths) {
    WirelessAdapter adapter{.interface = interface.filename().string(),
                            .hardwareAddress = firstLine(interface / "address"),
                            .state = stateOf(interface)};
    if (adapter.state == WirelessState::Connected || adapter.state == WirelessState::Connecting) {
        const auto strength = strengths.find(adapter.interface);
        const std::string ssid = kernelSsid(adapter.interface);
        adapter.network =
            WirelessNetwork{.ssid = ssid,
                            .name = nameOfSsid(ssid),
                            .strength = strength == strengths.end() ? 0 : strength->second,
                            .isVisible = true};
    }
    if (adapter.state == WirelessState::Connected) {
        adapter.addresses = addressesOf(adapter.interface);
        adapter.speed = kernelSpeed(adapter.interface);
    }
    return adapter;
}

} // namespace

std::map<std::string, int, std::less<>> strengthsOf(std::string_view procNetWireless) {
    Strengths result;
    std::istringstream lines{std::string(procNetWireless)};
    for (std::string line; std::getline(lines, line);) {
        const auto colon = line.find(':');
        if (colon == std::string::npos)
            continue;
        std::istringstream fields(line.substr(colon + 1));
        std::string status;
        // A number ends with a dot if the driver has updated it.
        std::string quality, level;
        if (!(fields >> status >> quality >> level))
            continue;
        double qualityNumber = 0, levelNumber = 0;
        const auto parse = [](const std::string& text, double& number) {
            return std::from_chars(text.data(), text.data() + text.size(), number).ec ==
                   std::errc();
        };
        std::string name = line.substr(0, colon);
        name.erase(0, name.find_first_not_of(' '));
        if (parse(quality, qualityNumber) && parse(level, levelNumber))
            result[name] = percent(qualityNumber, levelNumber);
    }
    return result;
}

KernelWireless::KernelWireless(KernelFiles files, std::function<void()> changed)
    : files_(std::move(files)), changed_(std::move(changed)) {
    watchInterfaces();
    updateTicks();
}

KernelWireless::~KernelWireless() {
    readable_.reset();
    if (netlink_ >= 0)
        ::close(netlink_);
}

WirelessStatus KernelWireless::read() const {
    std::ifstream stream(files_.wireless);
    std::ostringstream text;
    text << stream.rdbuf();
    const auto strengths = strengthsOf(text.str());
    WirelessStatus status{.isReady = true};
    for (const fs::path& interface : entries(files_.interfaces))
        if (isAdapter(interface))
            status.adapters.push_back(adapterAt(interface, strengths));
    std::ranges::sort(status.adapters, {}, &WirelessAdapter::interface);
    status.isRadioOn = std::ranges::any_of(status.adapters, [](const WirelessAdapter& adapter) {
        return adapter.state != WirelessState::Off;
    });
    return status;
}

void KernelWireless::watchInterfaces() {
    netlink_ = ::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_ROUTE);
    sockaddr_nl address{};
    address.nl_family = AF_NETLINK;
    address.nl_groups = RTMGRP_LINK | RTMGRP_IPV4_IFADDR | RTMGRP_IPV6_IFADDR;
    if (netlink_ < 0 ||
        ::bind(netlink_, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0)
        return;
    readable_ = mainThread().watchReadable(netlink_, [this] {
        std::array<char, 8192> ignored;
        // ENOBUFS: there were more events than the system keeps.
        while (::recv(netlink_, ignored.data(), ignored.size(), 0) >= 0 || errno == ENOBUFS ||
               errno == EINTR) {
        }
        updateTicks();
        changed_();
    });
}

void KernelWireless::updateTicks() {
    if (read().adapters.empty())
        ticks_.reset();
    else if (!ticks_)
        ticks_ = systemClock().tick(TickInterval::Minute, [this] { changed_(); });
}

} // namespace platform::qt
