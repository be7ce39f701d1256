#pragma once

#include <cstdint>
#include <string>

class QDBusArgument;

namespace platform::qt {

/// A loaded item, as the bar's D-Bus interface lists it.
struct BarItem {
    std::string identifier;
    std::string path; ///< of its bundle
    std::int32_t position = 0;
    double width = 0; ///< points
};

/// Writes and reads the D-Bus structure (ssid).
QDBusArgument& operator<<(QDBusArgument& argument, const BarItem& item);
const QDBusArgument& operator>>(const QDBusArgument& argument, BarItem& item);

} // namespace platform::qt
