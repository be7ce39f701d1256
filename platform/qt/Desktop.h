#pragma once

namespace platform::qt {

class QtGraphics;

/// Puts the desktop's services in place, Graphics, MainThread, PanelService, Pasteboard, Workspace,
/// the distributed notifications and the alert sound, for the rest of the program. Once, at the top
/// of main, after the QApplication is made. Gives the graphics, which the host also draws with.
QtGraphics& install();

} // namespace platform::qt
