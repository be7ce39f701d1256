#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/base/Service.h"

#include <cstdint>
#include <optional>
#include <string>

namespace platform {

/// A property of the machine or its system. On Linux, only SystemVersion is known: the version
/// of the kernel.
enum class SystemFact {
    SystemVersion,  ///< 0x1045 is 10.4.5: BCD major version, then 4 bits each for minor and patch
    BusClock,       ///< hertz
    ProcessorClock, ///< hertz
    LogicalMemory,  ///< bytes
    PhysicalMemory, ///< bytes
    MediaVersion,   ///< 0x07168000 is 7.1.6: encoded like SystemVersion, in the upper 16 bits
};

struct TimeZone {
    std::string name;         ///< in the tz database ("Europe/Paris"), or else the abbreviation
    std::string abbreviation; ///< such as "CET"
    std::int32_t secondsFromGMT = 0; ///< positive east of Greenwich
};

/// Information about the machine, its system and its time zone. Thread-safe.
class SystemInfo : NonCopyable {
  public:
    virtual ~SystemInfo();

    /// Returns a property, or std::nullopt if it is unknown.
    virtual std::optional<std::uint32_t> query(SystemFact fact) const = 0;

    /// Returns the system's current time zone.
    virtual TimeZone systemTimeZone() const = 0;
};

/// Returns the process's source of system information. The default queries the system.
SystemInfo& systemInfo();
template <>
SystemInfo* exchangeService<SystemInfo>(SystemInfo* service);

} // namespace platform
