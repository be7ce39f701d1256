#pragma once

namespace platform::qt {

/// Whether windows can be translucent: false on an X server without a compositing manager, true
/// everywhere else. May change while the program runs. Main thread.
bool windowsAreTranslucent();

} // namespace platform::qt
