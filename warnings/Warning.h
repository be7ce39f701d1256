#pragma once

#include "warnings/WarningTime.h"

#include <cstdint>
#include <string>

namespace warnings {

/// A warning that is set.
struct Warning {
    std::string identifier; ///< unique among all warnings, also those of the past
    std::string title;      ///< as in the list of titles, not translated; may be empty
    WarningTime time;
    /// When it was set or, if it recurs, rang last, in seconds since 1970-01-01 00:00:00 UTC. It
    /// rings next at the first of its times after this.
    std::int64_t since = 0;

    friend bool operator==(const Warning&, const Warning&) = default;
};

} // namespace warnings
