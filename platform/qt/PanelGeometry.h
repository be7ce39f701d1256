#pragma once

#include "platform/values/Geometry.h"

#include <QList>
#include <QPoint>
#include <QRect>
#include <Qt>

namespace platform::qt {

// The geometry of panels. A frame is in points, with the origin at the bottom left of the primary
// screen and y up; everything else is in Qt's coordinates, with y down. @p screen is the geometry
// of the primary screen, which need not be at (0, 0). The margin is the space for the shadow
// between the frame and the window's edges.

/// Returns the window geometry for a frame, rounded up to whole points and at least 1 x 1.
QRect windowGeometry(const Rect& frame, int margin, const QRect& screen);

/// Returns the frame for the window geometry @p window.
Rect panelFrame(const QRect& window, int margin, const QRect& screen);

/// Returns @p frame, moved to the first of @p screens if the user could not drag it by its title
/// bar because that is outside of all screens. The first screen is the primary one.
Rect reachableFrame(const Rect& frame, const QList<QRect>& screens);

/// Returns @p frame after dragging @p edges by @p distance. Never makes the frame smaller than
/// 76 x 40 points; a side that is already shorter does not shrink. If there are no edges,
/// moves the frame.
Rect draggedFrame(const Rect& frame, Qt::Edges edges, QPoint distance);

/// Returns the frame at @p fraction (0 to 1) of an animation, with whole coordinates.
Rect interpolatedFrame(const Rect& start, const Rect& end, double fraction);

/// Returns the edges that the mouse drags at @p position. @p frame is the frame in the window's
/// coordinates. With @p hasIndicator, the resize indicator drags the lower right corner.
Qt::Edges edgesAt(QPoint position, const QRect& frame, bool hasIndicator);

/// Returns the cursor for dragging @p edges, or the arrow for none.
Qt::CursorShape resizeCursor(Qt::Edges edges);

} // namespace platform::qt
