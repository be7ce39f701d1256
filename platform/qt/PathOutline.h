#pragma once

#include "platform/Graphics.h"
#include "platform/qt/Viewport.h"

#include <QPainterPath>

namespace platform::qt {

/// Converts a path to pixel coordinates. Arcs become polylines.
QPainterPath pathOutline(const BezierPath& path, const Viewport& viewport);

} // namespace platform::qt
