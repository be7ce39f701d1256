#pragma once

#include "platform/SystemInfo.h"

#include <string>
#include <string_view>

namespace platform::posix {

/// Encodes a kernel release such as "6.1.0-18-amd64" as SystemFact::SystemVersion. A major version
/// above 99 becomes 99, a minor version or patch level above 15 becomes 15, and a missing one 0.
/// Returns std::nullopt if @p release does not begin with a number.
std::optional<std::uint32_t> encodedVersion(std::string_view release);

/// The kernel's version and libc's time zone. Queries for all other facts return std::nullopt.
class PosixSystemInfo final : public SystemInfo {
  public:
    /// @p zoneFile is the file that holds the system's time zone. If it is a symbolic link into the
    /// tz database, its target names the zone. The environment variable TZ takes precedence.
    explicit PosixSystemInfo(std::string zoneFile = "/etc/localtime");

    std::optional<std::uint32_t> query(SystemFact fact) const override;
    TimeZone systemTimeZone() const override;

  private:
    std::string zoneFile_;
};

} // namespace platform::posix
