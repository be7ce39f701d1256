#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/base/Service.h"
#include "platform/base/Watch.h"
#include "platform/values/ZoneRules.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// The time zones of the machine's tz database. They do not depend on the process's time zone and
/// do not change it. Thread-safe, except for watchLocal.
class TimeZones : NonCopyable {
  public:
    virtual ~TimeZones();

    /// Returns the current rules of the zone with this name, such as "Europe/Paris". Reads its file
    /// again if it has changed since the last call, so an update of the tz database takes effect.
    /// Returns std::nullopt if the name or the file is invalid, or the file is missing; this is
    /// logged once until the file changes.
    virtual std::optional<ZoneRules> zone(std::string_view name) = 0;

    /// Returns the names of all zones, including former names ("US/Pacific"), sorted. Empty if
    /// there is no tz database.
    virtual std::vector<std::string> names() = 0;

    /// Returns the rules of the system's current time zone, or UTC if they cannot be read (logged).
    virtual ZoneRules local() = 0;
    /// Returns the name of the system's current time zone. Empty if it has none, for example if the
    /// environment variable TZ holds rules.
    virtual std::string localName() = 0;

    /// Calls @p handler on the main thread after the system's time zone has changed. Exceptions
    /// from it are logged with the owner's identifier and swallowed. The handler may destroy its
    /// own watch. Returns null and logs the reason if the system is out of watches. Main thread
    /// only.
    virtual std::unique_ptr<Watch> watchLocal(std::function<void()> handler) = 0;
};

/// Returns the process's time zones. The default reads those in the folder that the environment
/// variable TZDIR names, or else in /usr/share/zoneinfo.
TimeZones& timeZones();
template <>
TimeZones* exchangeService<TimeZones>(TimeZones* service);

} // namespace platform
