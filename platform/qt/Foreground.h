#pragma once

#include "platform/ProcessList.h"

namespace platform::qt {

/// Brings an application to the front. Calls org.freedesktop.Application.Activate on the session
/// bus, with the identifier of the application's bundle as the bus name; both X11 and Wayland allow
/// that. A call that fails is logged. If it fails or is not possible, requests that the X11 window
/// manager activate the process's topmost window. Does not wait. Main thread.
void bringApplicationToFront(ProcessSerialNumber process);

} // namespace platform::qt
