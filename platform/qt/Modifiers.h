#pragma once

#include "platform/values/Event.h"

#include <Qt>

namespace platform::qt {

/// Qt's modifier keys as the flags of an event.
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
