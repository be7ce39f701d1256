#pragma once

#include "platform/ProcessList.h"

namespace platform::qt {

/// Brings an application to the front. The program of an application bundle is asked over the bus
/// to activate itself, under the bundle's identifier, which X11 and Wayland both allow; when that
/// is not possible, X11's window manager is asked to activate the process's topmost window. Main
/// thread; waits for nobody.
void bringApplicationToFront(ProcessSerialNumber process);

} // namespace platform::qt
