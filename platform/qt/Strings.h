#pragma once

#include <QString>

#include <string_view>

namespace platform::qt {

/// Converts UTF-8.
inline QString qString(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

} // namespace platform::qt
