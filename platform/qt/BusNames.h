#pragma once

/// Distributed notifications on the session bus. Each is a signal with three strings: the name, the
/// object (empty for none), and the user information, a dictionary as an XML property list.
namespace platform {

inline constexpr const char* kNotificationPath = "/com/quorvanesoftware/Notifications";
inline constexpr const char* kNotificationInterface = "com.quorvanesoftware.Notifications1";
inline constexpr const char* kNotificationSignal = "Posted";
inline constexpr const char* kNotificationSignature = "sss";

} // namespace platform
