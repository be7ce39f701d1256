#pragma once

#include "platform/values/Color.h"

#include <QColor>

#include <algorithm>

namespace platform::qt {

/// Converts a colour. Components are clamped to 0 to 1; NaN becomes 0.
inline QColor qColor(const Color& color) {
    const auto component = [](double c) {
        return c > 0 ? static_cast<float>(std::min(c, 1.0)) : 0.0F;
    };
    return QColor::fromRgbF(component(color.red), component(color.green), component(color.blue),
                            component(color.alpha));
}

} // namespace platform::qt
