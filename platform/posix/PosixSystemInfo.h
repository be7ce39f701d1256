#pragma once

#include "platform/SystemInfo.h"

#include <string>
#include <string_view>

namespace platform::posix {

/// A release such as "6.1.0-18-amd64" in the coding of SystemFact::SystemVersion, with at most 9
/// for the minor part and the patch, 0 when they are missing, and at most 99 for the major part.
/// Nothing when it does not begin with a number.
std::optional<std::uint32_t> codedVersion(std::string_view release);

/// The kernel's version, and the time zone of libc. There is no media software to ask.
class PosixSystemInfo final : public SystemInfo {
  public:
    /// @p zoneFile is the file that says which time zone the system is in; as a symbolic link it
    /// gives the zone's name. The variable TZ goes before it.
    explicit PosixSystemInfo(std::string zoneFile = "/etc/localtime");

    std::optional<std::uint32_t> query(SystemFact fact) const override;
    TimeZone systemTimeZone() const override;

  private:
    std::string zoneFile_;
};

} // namespace platform::posix
