#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/values/AttributedString.h"
#include "platform/values/BezierPath.h"
#include "platform/values/Color.h"
#include "platform/values/Geometry.h"
#include "platform/values/Image.h"

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

    /// Saves all settings below, or restores the ones last saved. Calls nest.
    virtual void saveGraphicsState() = 0;
    virtual void restoreGraphicsState() = 0;

    /// Allows or forbids subpixel smoothing of text.
    virtual void setShouldSmoothFonts(bool smooth) = 0;
    virtual void setTextDrawingMode(TextDrawingMode mode) = 0;
    /// Sets the operation for text. The initial value is SourceOver.
    virtual void setCompositingOperation(CompositingOperation operation) = 0;
    /// Sets the shadow of text whose attributes have none, in points. Its colour is the
    /// default shadow colour.
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
    /// Fills a path by the nonzero winding rule, with antialiasing. Closes open subpaths. Does
    /// nothing for a pattern colour.
    virtual void fillPath(const BezierPath& path, const Color& color,
                          CompositingOperation operation) = 0;
};

} // namespace platform
