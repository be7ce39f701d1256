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

/// An item that the bar knows, loaded or not, as Items of the bar's D-Bus interface lists it.
struct KnownItem {
    std::string identifier; ///< empty if it could not be read
    std::string path;       ///< of its bundle
    std::int32_t position = 0;
    double width = 0;         ///< points; 0 if it is not loaded
    std::string version = {}; ///< CFBundleVersion
    std::string name = {};    ///< CFBundleName
    bool isOwn = false;       ///< made by the bar's maker, not by a third party
    /// "loaded"; "disabled", because it crashed the bar or was turned off; "refused", since the bar
    /// has started; "missing", if there is no folder at the path; otherwise "not loaded".
    std::string state = {};
    std::string reason = {}; ///< why the item is disabled, refused or missing, human-readable
};

/// Returns why the item is not loaded, for example "disabled: it crashed the menu bar (click)", or
/// an empty string if there is no reason.
std::string problemOf(const KnownItem& item);

/// Writes and reads the D-Bus structure (ssid).
QDBusArgument& operator<<(QDBusArgument& argument, const BarItem& item);
const QDBusArgument& operator>>(const QDBusArgument& argument, BarItem& item);
/// Writes and reads the D-Bus structure (sa{sv}): the identifier, and the other members under their
/// names, isOwn as "own". Unknown names are ignored.
QDBusArgument& operator<<(QDBusArgument& argument, const KnownItem& item);
const QDBusArgument& operator>>(const QDBusArgument& argument, KnownItem& item);

} // namespace platform::qt
