#pragma once

#include "platform/values/Geometry.h"

#include <cstdint>
#include <string>
#include <vector>

/// What a view receives besides mouse clicks (see Event.h). Locations are in the view's points.
namespace platform {

/// A turn of the mouse wheel, or a scroll gesture.
struct WheelEvent {
    Point location{};
    double deltaX = 0;               ///< in notches of the wheel; positive to the right
    double deltaY = 0;               ///< in notches of the wheel; positive away from the user
    std::uint32_t modifierFlags = 0; ///< the masks of Event.h
};

/// A key that does not enter text.
enum class Key {
    None,
    Return, ///< also Enter on the keypad
    Escape,
    Tab,
    Backspace,
    Delete,
    Left,
    Right,
    Up,
    Down,
    PageUp,
    PageDown,
    Home,
    End,
};

/// A key press, or a repetition while the key is held.
struct KeyEvent {
    Key key = Key::None;
    /// What the key enters, in UTF-8, if it is not one of the keys above. With Control, the key's
    /// own character in lower case.
    std::string text{};
    std::uint32_t modifierFlags = 0; ///< the masks of Event.h
};

/// What the user drags over a view and drops on it.
struct DroppedData {
    Point location{};
    std::string text{};               ///< plain text in UTF-8
    std::vector<std::string> files{}; ///< absolute paths; files that are not local are left out
};

/// How screen readers present a view. Empty texts are replaced by the container's own.
struct AccessibleDescription {
    std::string name{};  ///< what it is, such as "Clock"
    std::string value{}; ///< what it shows now, such as "Monday, 14:05"
    std::string description{};
};

} // namespace platform
