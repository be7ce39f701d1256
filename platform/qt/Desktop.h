#pragma once

namespace platform::qt {

class QtGraphics;

/// Installs the desktop services for the rest of the program: Applications, Graphics, LoginSession,
/// MainThread, PanelService, Pasteboard, ProcessList, UserNotifications, Wireless, Workspace,
/// DistributedNotificationCenter, and the alert sound. Call it once, at the top of main, after
/// creating the QApplication. Returns the graphics, for the host's own drawing.
QtGraphics& install();

} // namespace platform::qt
