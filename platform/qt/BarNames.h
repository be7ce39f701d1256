#pragma once

/// The menu bar's names on the session bus.
namespace platform::qt {

inline constexpr const char* kBarBusName = "com.quorvanesoftware.MenuBar";
inline constexpr const char* kBarObjectPath = "/com/quorvanesoftware/MenuBar";
inline constexpr const char* kBarInterface = "com.quorvanesoftware.MenuBar1";
/// The name of the bar's error replies. Their text is human-readable.
inline constexpr const char* kBarError = "com.quorvanesoftware.MenuBar1.Error";

} // namespace platform::qt
