#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/base/Service.h"

#include <cstdint>
#include <optional>
#include <string>

namespace platform {

/// What a program can ask about the machine and its system.
enum class SystemFact {
    SystemVersion,  ///< 0x1045 is 10.4.5: the major part binary-coded decimal, then four bits each
    BusClock,       ///< hertz; nobody answers this here, nor the next three
    ProcessorClock, ///< hertz
    LogicalMemory,  ///< bytes
    PhysicalMemory, ///< bytes
    MediaVersion,   ///< 0x07168000 is 7.1.6: the same in the upper 16 bits
};

struct TimeZone {
    std::string name;                ///< as the tz database has it: "Europe/Paris"
    std::string abbreviation;        ///< "CET"
    std::int32_t secondsFromGMT = 0; ///< positive east of it
};

/// The machine, its system, and the place it stands in. Safe from any thread.
class SystemInfo : NonCopyable {
  public:
    virtual ~SystemInfo();

    /// Nothing when the system does not know.
    virtual std::optional<std::uint32_t> query(SystemFact fact) const = 0;

    /// The system's time zone, as it is at this moment.
    virtual TimeZone systemTimeZone() const = 0;
};

/// What the process knows of its system; the system's own answers until a host installs others.
SystemInfo& systemInfo();
template <>
SystemInfo* exchangeService<SystemInfo>(SystemInfo* service);

} // namespace platform
