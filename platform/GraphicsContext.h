#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/values/AttributedString.h"
#include "platform/values/BezierPath.h"
#include "platform/values/Color.h"
#include "platform/values/Geometry.h"
#include "platform/values/Image.h"

namespace platform {

/// How what is drawn meets what is there; the numbers are the platform's own. With premultiplied
/// values and coverage in alpha, 0 to 10 are the Porter-Duff operations. PlusDarker is
/// a = min(1, as + ad), c = max(0, a - ((as - cs) + (ad - cd))); Highlight draws like SourceOver;
/// PlusLighter adds, at most 1. An operation changes only what lies inside the drawn shape.
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

enum class TextDrawingMode : int { Fill = 0, Stroke = 1, FillStroke = 2, Invisible = 3 };

/// What drawing goes to. Main thread.
class GraphicsContext : NonCopyable {
  public:
    virtual ~GraphicsContext();

    /// Save and restore cover all the settings below, and nest.
    virtual void saveGraphicsState() = 0;
    virtual void restoreGraphicsState() = 0;

    /// Whether text may use the colour fringes of subpixel smoothing.
    virtual void setShouldSmoothFonts(bool smooth) = 0;
    virtual void setTextDrawingMode(TextDrawingMode mode) = 0;
    /// What text is drawn with. SourceOver at first.
    virtual void setCompositingOperation(CompositingOperation operation) = 0;
    /// A shadow under the text that is drawn from now on, in the default shadow colour. A run's own
    /// shadow takes its place.
    virtual void setShadow(Size offset, double blurRadius) = 0;

    /// Draws text with its lower left corner, descent included, at @p point.
    virtual void drawText(const AttributedString& text, Point point) = 0;
    /// Draws text on one line from the top of a rectangle, as the paragraph style of its first run
    /// says, and nothing of it outside of the rectangle. A rectangle without width or height, or
    /// with negative ones, gets no text.
    virtual void drawTextInRect(const AttributedString& text, const Rect& rect) = 0;
    /// Draws the part @p source of an image, in its points, into @p destination, times @p fraction
    /// (0 to 1) of its opacity.
    virtual void drawImage(const Image& image, const Rect& destination, const Rect& source,
                           CompositingOperation operation, double fraction) = 0;
    /// Fills a rectangle. A pattern colour has no components, and fills nothing.
    virtual void fillRect(const Rect& rect, const Color& color, CompositingOperation operation) = 0;
    /// Fills what a path winds around (nonzero rule), with smooth edges; open parts are closed. A
    /// pattern colour fills nothing.
    virtual void fillPath(const BezierPath& path, const Color& color,
                          CompositingOperation operation) = 0;
};

} // namespace platform
