#pragma once

#include "platform/values/ZoneRules.h"

#include <string>
#include <string_view>

namespace platform::posix {

struct TzFileResult {
    std::optional<ZoneRules> rules; ///< std::nullopt if the file is malformed
    std::string reason;             ///< human-readable cause if there are no rules
};

/// Parses the contents of a compiled file of the tz database ("TZif"), versions 1 to 4.
TzFileResult parseTzFile(std::string_view contents);

} // namespace platform::posix
