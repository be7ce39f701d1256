#pragma once

#include "platform/Clock.h"

#include <cstdint>

namespace apps {

/// Polls @p condition every 50 ms until it is true. Returns false after five seconds.
template <class Condition>
bool waitUntil(Condition condition) {
    constexpr int kAttempts = 100;
    constexpr std::uint64_t kInterval = 50'000; // microseconds
    for (int i = 0; i < kAttempts; ++i) {
        if (condition())
            return true;
        platform::systemClock().sleep(kInterval);
    }
    return condition();
}

} // namespace apps
