#pragma once

/// The D-Bus names of NetworkManager.
namespace platform::qt::nm {

inline constexpr const char* kName = "org.freedesktop.NetworkManager";
inline constexpr const char* kManagerPath = "/org/freedesktop/NetworkManager";
inline constexpr const char* kObjectsPath = "/org/freedesktop";

inline constexpr const char* kManager = "org.freedesktop.NetworkManager";
inline constexpr const char* kDevice = "org.freedesktop.NetworkManager.Device";
inline constexpr const char* kWireless = "org.freedesktop.NetworkManager.Device.Wireless";
inline constexpr const char* kAccessPoint = "org.freedesktop.NetworkManager.AccessPoint";
inline constexpr const char* kActive = "org.freedesktop.NetworkManager.Connection.Active";
inline constexpr const char* kConnection = "org.freedesktop.NetworkManager.Settings.Connection";
inline constexpr const char* kIp4 = "org.freedesktop.NetworkManager.IP4Config";
inline constexpr const char* kIp6 = "org.freedesktop.NetworkManager.IP6Config";

inline constexpr const char* kObjectManager = "org.freedesktop.DBus.ObjectManager";
inline constexpr const char* kProperties = "org.freedesktop.DBus.Properties";

} // namespace platform::qt::nm
