#pragma once

#include "platform/Clock.h"

#include <cstdint>

namespace apps {

/// Polls @p condition every 50 ms until it is true. Returns false after @p seconds.
template <class Condition>
bool waitUntil(Condition condition, int seconds = 5) {
    constexpr std::uint64_t kInterval = 50'000; // microseconds
    for (int i = 0; i < 20 * seconds; ++i) {
        if (condition())
            return true;
        platform::systemClock().sleep(kInterval);
    }
    return condition();
}

} // namespace apps
