#pragma once

/// How programs tell one another of notifications on the session bus: a signal of three strings,
/// the notification's name, its object (empty for none) and its user information, a dictionary as
/// an XML property list.
namespace platform {

inline constexpr const char* kNotificationPath = "/com/quorvanesoftware/Notifications";
inline constexpr const char* kNotificationInterface = "com.quorvanesoftware.Notifications1";
inline constexpr const char* kNotificationSignal = "Posted";
inline constexpr const char* kNotificationSignature = "sss";

} // namespace platform
