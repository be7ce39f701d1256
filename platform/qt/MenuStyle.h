#pragma once

class QStyle;

namespace platform::qt {

/// Returns the style of QtMenu. It draws the background, the border and the shadow in the colours
/// of the palette; the rows are drawn by MenuRow. Menus that are higher than the screen scroll.
/// Main thread.
QStyle* menuStyle();

} // namespace platform::qt
