#include "platform/qt/Nl80211.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <linux/genetlink.h>
#include <linux/netlink.h>
#include <linux/nl80211.h>
#include <net/if.h>
#include <sys/socket.h>
#include <unistd.h>

namespace platform::qt {
namespace {

constexpr std::size_t kHeaders = NLMSG_HDRLEN + GENL_HDRLEN;

template <class T>
std::string_view bytes(const T& object) {
    return {reinterpret_cast<const char*>(&object), sizeof(object)};
}

template <class T>
T fromBytes(std::string_view text) {
    T object{};
    std::memcpy(&object, text.data(), sizeof(object));
    return object;
}

std::string message(const GenericNetlinkRequest& request, std::uint16_t type,
                    std::string_view value) {
    nlattr attribute{};
    attribute.nla_len = static_cast<std::uint16_t>(NLA_HDRLEN + value.size());
    attribute.nla_type = type;
    genlmsghdr generic{};
    generic.cmd = request.command;
    generic.version = 1;
    nlmsghdr header{};
    header.nlmsg_len = static_cast<std::uint32_t>(kHeaders + NLA_ALIGN(attribute.nla_len));
    header.nlmsg_type = request.family;
    header.nlmsg_flags = static_cast<std::uint16_t>(NLM_F_REQUEST | request.flags);
    std::string result;
    for (const std::string_view part : {bytes(header), bytes(generic), bytes(attribute), value})
        result += part;
    result.resize(header.nlmsg_len);
    return result;
}

/// Returns the number in the first attribute of this type.
template <class T>
std::optional<T> numberIn(std::string_view attributes, std::uint16_t type) {
    const auto value = netlinkAttribute(attributes, type);
    return value && value->size() == sizeof(T) ? std::optional(fromBytes<T>(*value)) : std::nullopt;
}

std::string nl80211Reply(std::uint8_t command, std::uint16_t flags, const std::string& interface) {
    const std::uint32_t index = ::if_nametoindex(interface.c_str());
    const auto family = genericNetlinkFamily(NL80211_GENL_NAME);
    if (index == 0 || !family)
        return {};
    return genericNetlinkReply({*family, command, flags}, NL80211_ATTR_IFINDEX, bytes(index));
}

} // namespace

std::optional<std::string_view> netlinkAttribute(std::string_view attributes, std::uint16_t type) {
    while (attributes.size() >= sizeof(nlattr)) {
        const auto header = fromBytes<nlattr>(attributes);
        if (header.nla_len < NLA_HDRLEN || header.nla_len > attributes.size())
            return std::nullopt;
        if ((header.nla_type & NLA_TYPE_MASK) == type)
            return attributes.substr(NLA_HDRLEN, header.nla_len - std::size_t{NLA_HDRLEN});
        attributes.remove_prefix(
            std::min<std::size_t>(NLA_ALIGN(header.nla_len), attributes.size()));
    }
    return std::nullopt;
}

// The kernel has queued its reply when send returns.
std::string genericNetlinkReply(const GenericNetlinkRequest& request, std::uint16_t type,
                                std::string_view value) {
    const int netlink = ::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_GENERIC);
    if (netlink < 0)
        return {};
    const std::string sent = message(request, type, value);
    alignas(nlmsghdr) std::array<char, 8192> buffer;
    ssize_t size = ::send(netlink, sent.data(), sent.size(), 0);
    if (size >= 0)
        size = ::recv(netlink, buffer.data(), buffer.size(), MSG_DONTWAIT);
    ::close(netlink);
    if (size < static_cast<ssize_t>(kHeaders))
        return {};
    const std::string_view reply(buffer.data(), static_cast<std::size_t>(size));
    const auto header = fromBytes<nlmsghdr>(reply);
    if (header.nlmsg_type != request.family || header.nlmsg_len < kHeaders ||
        header.nlmsg_len > reply.size())
        return {};
    return std::string(reply.substr(kHeaders, header.nlmsg_len - kHeaders));
}

std::optional<std::uint16_t> genericNetlinkFamily(const std::string& name) {
    const std::string reply = genericNetlinkReply(
        {GENL_ID_CTRL, CTRL_CMD_GETFAMILY}, CTRL_ATTR_FAMILY_NAME, {name.c_str(), name.size() + 1});
    return numberIn<std::uint16_t>(reply, CTRL_ATTR_FAMILY_ID);
}

std::string kernelSsid(const std::string& interface) {
    const std::string reply = nl80211Reply(NL80211_CMD_GET_INTERFACE, 0, interface);
    return std::string(netlinkAttribute(reply, NL80211_ATTR_SSID).value_or(""));
}

std::optional<std::uint64_t> kernelSpeed(const std::string& interface) {
    // The access point is the only station that an interface in this mode knows.
    return speedOfStation(nl80211Reply(NL80211_CMD_GET_STATION, NLM_F_DUMP, interface));
}

std::optional<std::uint64_t> speedOfStation(std::string_view attributes) {
    constexpr std::uint64_t kUnit = 100'000; // bits per second
    for (const int type : {int{NL80211_ATTR_STA_INFO}, int{NL80211_STA_INFO_TX_BITRATE}})
        attributes = netlinkAttribute(attributes, static_cast<std::uint16_t>(type)).value_or("");
    if (const auto rate = numberIn<std::uint32_t>(attributes, NL80211_RATE_INFO_BITRATE32))
        return *rate * kUnit;
    // Older drivers; too small for fast connections.
    if (const auto rate = numberIn<std::uint16_t>(attributes, NL80211_RATE_INFO_BITRATE))
        return *rate * kUnit;
    return std::nullopt;
}

} // namespace platform::qt
