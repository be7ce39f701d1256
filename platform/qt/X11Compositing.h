#pragma once

namespace platform::qt {

/// Whether windows can be translucent now: everywhere but on an X server that nobody composites.
/// Main thread, with a QGuiApplication.
bool windowsAreTranslucent();

} // namespace platform::qt
