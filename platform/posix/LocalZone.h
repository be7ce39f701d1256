#pragma once

#include "platform/base/Watch.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace platform::posix {

/// The file, or the link to it, that holds the system's time zone.
inline constexpr const char* kLocalZoneFile = "/etc/localtime";

/// Returns the value of the environment variable TZ without its leading colon, which only says that
/// it names a file. Empty if the variable is unset or empty.
std::string_view zoneInEnvironment();

/// Returns the name in the tz database of the system's time zone: that in TZ or, without TZ, that
/// of the file to which @p zoneFile is a link. Empty if it is no link. TZ may hold rules instead of
/// a name; they are returned unchanged. Throws nothing but std::bad_alloc.
std::string localZoneName(const std::string& zoneFile);

/// Calls @p handler on the main thread after @p zoneFile has changed and libc has read it again.
/// See FileManager::watchFile for the rest.
std::unique_ptr<Watch> watchLocalZone(const std::string& zoneFile, std::function<void()> handler);

} // namespace platform::posix
