#pragma once

#include "platform/values/Event.h"

#include <Qt>

namespace platform::qt {

/// Returns the flags of an Event for Qt's modifier keys.
inline std::uint32_t modifierFlags(Qt::KeyboardModifiers modifiers) {
    std::uint32_t flags = 0;
    if (modifiers & Qt::ShiftModifier)
        flags |= kShiftKeyMask;
    if (modifiers & Qt::ControlModifier)
        flags |= kControlKeyMask;
    if (modifiers & Qt::AltModifier)
        flags |= kOptionKeyMask;
    return flags;
}

} // namespace platform::qt
