#pragma once

#include "platform/values/Color.h"

#include <QRect>
#include <QString>

class QColor;
class QPainter;

namespace platform::qt {

class QtImage;

// The parts of a panel. @p frame is the panel's frame in the window's coordinates.

/// The shadow of a panel. Lengths are in points.
struct PanelShadow {
    int width = 0;
    double radius = 6; ///< of the panel's corners
    double opacity = 0.3;
};

/// Draws a shadow around the frame. Nothing is drawn inside, where it would show through a
/// translucent background.
void paintPanelShadow(QPainter& painter, const QRect& frame, const PanelShadow& shadow);

/// Fills the frame with a colour. Tiles of a pattern start at the lower left corner; they are drawn
/// with the pixels for @p devicePixelRatio.
void paintPanelBackground(QPainter& painter, const QRect& frame, const Color& color,
                          double devicePixelRatio);

/// Draws a title in a title bar of @p height points, centred and with an ellipsis if it is too
/// long.
void paintPanelTitle(QPainter& painter, const QRect& frame, int height, const QString& title,
                     const QColor& color);

/// Draws three diagonal lines in the lower right corner.
void paintResizeIndicator(QPainter& painter, const QRect& frame, QColor color);

/// Draws an image as large as @p place, moved to the next pixels. A template has the colour
/// @p foreground.
void paintPanelImage(QPainter& painter, const QtImage& image, QRectF place,
                     const QColor& foreground);

} // namespace platform::qt
