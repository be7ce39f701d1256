#pragma once

#include "platform/Clock.h"

#include <cstdint>

namespace apps {

/// Whether @p condition becomes true within five seconds.
template <class Condition>
bool eventually(Condition condition) {
    constexpr int kTries = 100;
    constexpr std::uint64_t kBetweenTries = 50'000; // microseconds
    for (int i = 0; i < kTries; ++i) {
        if (condition())
            return true;
        platform::systemClock().sleep(kBetweenTries);
    }
    return condition();
}

} // namespace apps
