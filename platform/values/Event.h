#pragma once

#include "platform/values/Geometry.h"

#include <cstdint>

namespace platform {

// Modifier flags of an event. The values are the platform's own.
inline constexpr std::uint32_t kShiftKeyMask = 0x20000;
inline constexpr std::uint32_t kControlKeyMask = 0x40000;
inline constexpr std::uint32_t kOptionKeyMask = 0x80000; ///< Alt on most keyboards

/// A mouse event.
struct Event {
    std::uint32_t modifierFlags = 0; ///< the masks above, or-ed; other bits may be set
    std::int32_t clickCount = 1;     ///< 2 for the second click of a double-click, and so on
    std::int32_t buttonNumber = 0;   ///< 0 left, 1 right, 2 middle, 3 back, 4 forward
    Point location{};                ///< in the view's points; the origin if it is not known

    friend bool operator==(const Event&, const Event&) = default;
};

} // namespace platform
