#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/values/AttributedString.h"
#include "platform/values/BezierPath.h"
#include "platform/values/Color.h"
#include "platform/values/Geometry.h"
#include "platform/values/Gradient.h"
#include "platform/values/Image.h"
#include "platform/values/StrokeStyle.h"

namespace platform {

/// How drawing combines with existing pixels. The values are the platform's own. 0 to 10 are the
/// Porter-Duff operations on premultiplied components. PlusDarker is a = min(1, as + ad),
/// c = max(0, a - ((as - cs) + (ad - cd))). Highlight is the same as SourceOver. PlusLighter adds
/// the components and clamps them to 1. Pixels outside of the drawn shape never change.
enum class CompositingOperation : int {
    Clear = 0,
    Copy = 1,
    SourceOver = 2,
    SourceIn = 3,
    SourceOut = 4,
    SourceAtop = 5,
    DestinationOver = 6,
    DestinationIn = 7,
    DestinationOut = 8,
    DestinationAtop = 9,
    XOR = 10,
    PlusDarker = 11,
    Highlight = 12,
    PlusLighter = 13,
};

/// How glyphs are drawn. The values are the platform's own.
enum class TextDrawingMode : int { Fill = 0, Stroke = 1, FillStroke = 2, Invisible = 3 };

/// A drawing destination. Main thread only.
class GraphicsContext : NonCopyable {
  public:
    virtual ~GraphicsContext();

    /// Saves all settings below, the coordinate system and the clip, or restores the ones last
    /// saved. Calls nest.
    virtual void saveGraphicsState() = 0;
    virtual void restoreGraphicsState() = 0;

    // Each of these changes the coordinate system for what is drawn from now on. Lengths are in
    // units of the one before; the origin is that of the one before. An argument that is not finite
    // has no effect. After scaling by 0, nothing is drawn.

    /// Moves the origin.
    virtual void translateBy(double deltaX, double deltaY) = 0;
    /// Rotates the axes counterclockwise around the origin.
    virtual void rotateByDegrees(double angle) = 0;
    /// Multiplies the lengths on each axis; a negative factor mirrors it.
    virtual void scaleBy(double factorX, double factorY) = 0;

    /// Restricts drawing to the inside of a path, by its winding rule and with antialiasing, where
    /// it was not restricted before. An empty path excludes everything.
    virtual void clipToPath(const BezierPath& path) = 0;

    /// Allows or forbids subpixel smoothing of text.
    virtual void setShouldSmoothFonts(bool smooth) = 0;
    virtual void setTextDrawingMode(TextDrawingMode mode) = 0;
    /// Sets the operation for text. The initial value is SourceOver.
    virtual void setCompositingOperation(CompositingOperation operation) = 0;
    /// Sets the shadow of text whose attributes have none, in points. Its colour is the
    /// default shadow colour. Changes of the coordinate system do not affect shadows.
    virtual void setShadow(Size offset, double blurRadius) = 0;

    /// Draws text with its lower left corner, including the descent, at @p point.
    virtual void drawText(const AttributedString& text, Point point) = 0;
    /// Draws text on one line at the top of @p rect, with the paragraph style of its first run, and
    /// clips it to @p rect. Draws nothing if the width or height is not positive.
    virtual void drawTextInRect(const AttributedString& text, const Rect& rect) = 0;
    /// Draws the part @p source of an image, in points of the image, into @p destination, with its
    /// opacity multiplied by @p fraction (0 to 1).
    virtual void drawImage(const Image& image, const Rect& destination, const Rect& source,
                           CompositingOperation operation, double fraction) = 0;
    /// Fills a rectangle. Does nothing for a pattern colour.
    virtual void fillRect(const Rect& rect, const Color& color, CompositingOperation operation) = 0;
    /// Fills a path by its winding rule, with antialiasing. Closes open subpaths. Does nothing for
    /// a pattern colour.
    virtual void fillPath(const BezierPath& path, const Color& color,
                          CompositingOperation operation) = 0;
    /// Fills a path with a gradient. Pixels without a colour do not change.
    virtual void fillPathWithGradient(const BezierPath& path, const Gradient& gradient,
                                      CompositingOperation operation) = 0;
    /// Draws a line along a path, with antialiasing. A subpath without length is a dot, unless the
    /// caps are butt. Does nothing for a pattern colour, or if the width is not positive and
    /// finite.
    virtual void strokePath(const BezierPath& path, const StrokeStyle& style, const Color& color,
                            CompositingOperation operation) = 0;
};

} // namespace platform
