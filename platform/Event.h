#pragma once

#include "platform/Service.h"

#include <cstdint>

namespace platform {

/// Modifier flags of an event; the values are the platform's own.
inline constexpr std::uint32_t kShiftKeyMask = 0x20000;
inline constexpr std::uint32_t kControlKeyMask = 0x40000;
inline constexpr std::uint32_t kOptionKeyMask = 0x80000; ///< Alt on most keyboards

/// What the user did with the mouse.
struct Event {
    std::uint32_t modifierFlags = 0; ///< the masks above, or-ed; other bits may be set
    std::int32_t clickCount = 1;     ///< 2 for the second click of a double-click, and so on
    std::int32_t buttonNumber = 0;   ///< 0 left, 1 right, 2 middle, 3 the next

    friend bool operator==(const Event&, const Event&) = default;
};

/// Knows which event the program is handling. Main thread.
class EventSource {
  public:
    EventSource() = default;
    virtual ~EventSource();
    EventSource(const EventSource&) = delete;
    EventSource& operator=(const EventSource&) = delete;

    /// The event being handled, or, outside of one, an event without clicks that tells the modifier
    /// keys as they were last seen.
    virtual Event currentEvent() const = 0;
};

/// The process's events. Until a host installs another source: a program that has none, whose
/// current event has no flags.
EventSource& eventSource();
template <>
EventSource* exchangeService<EventSource>(EventSource* service);

} // namespace platform
