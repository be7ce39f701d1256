#pragma once

class QStyle;

namespace platform::qt {

/// Returns the style of QtMenu. It has the desktop's frame and background; the rows are drawn by
/// MenuRow, and menus that are higher than the screen scroll. Main thread.
QStyle* menuStyle();

} // namespace platform::qt
