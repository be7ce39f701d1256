#pragma once

#include "platform/Graphics.h"
#include "platform/qt/Viewport.h"

#include <QPainterPath>

namespace platform::qt {

// Shapes in pixels. Curves become polylines that differ from them by less than a fiftieth of a
// pixel.

/// Returns the inside of a path, with its winding rule.
QPainterPath pathOutline(const BezierPath& path, const Viewport& viewport);

/// Returns the area that the stroke of a path covers. It is empty if the width is not positive and
/// finite.
QPainterPath strokeOutline(const BezierPath& path, const StrokeStyle& style,
                           const Viewport& viewport);

} // namespace platform::qt
