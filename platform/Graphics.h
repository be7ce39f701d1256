#pragma once

#include "platform/BezierPath.h"
#include "platform/Color.h"
#include "platform/Geometry.h"
#include "platform/Service.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

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

/// A blurred shadow. The offset is in points, y upwards; the blur radius is twice the standard
/// deviation of the Gaussian that it stands for.
struct Shadow {
    Size offset;
    double blurRadius = 0;
    Color color{0, 0, 0, 1.0 / 3.0}; ///< the platform's default shadow colour
    friend bool operator==(const Shadow&, const Shadow&) = default;
};

/// A typeface by family. An empty family, and a size of 0, mean the menu bar's own font and size.
struct Font {
    std::string family;
    double size = 0; ///< points
    bool bold = false;
    friend bool operator==(const Font&, const Font&) = default;
};

/// How large a control is; the numbers are the platform's own.
enum class ControlSize : int { Regular = 0, Small = 1, Mini = 2 };

/// The size in points of the text of a control.
double systemFontSize(ControlSize size);

enum class TextAlignment : int { Left = 0, Right = 1, Center = 2 };

/// What becomes of text that is too wide for its place.
enum class LineBreakMode : int {
    Clipping = 2,       ///< it is cut at the edge
    TruncatingTail = 4, ///< its end gives way to an ellipsis
};

/// How text lies in a rectangle.
struct ParagraphStyle {
    TextAlignment alignment = TextAlignment::Left;
    LineBreakMode lineBreakMode = LineBreakMode::Clipping;
    friend bool operator==(const ParagraphStyle&, const ParagraphStyle&) = default;
};

/// How a run of text looks. What is not set takes the platform's default: the menu bar's font, and
/// the text colour of the place that it is drawn in.
struct TextAttributes {
    std::optional<Font> font{};
    std::optional<Color> foregroundColor{};
    std::optional<Shadow> shadow{};
    std::optional<ParagraphStyle> paragraphStyle{};
    friend bool operator==(const TextAttributes&, const TextAttributes&) = default;
};

/// Text with attributes by range. A regular value; ranges are bytes of the UTF-8 text.
class AttributedString {
  public:
    struct Run {
        std::size_t location = 0;
        std::size_t length = 0;
        TextAttributes attributes;
        friend bool operator==(const Run&, const Run&) = default;
    };

    explicit AttributedString(std::string text = {}, TextAttributes attributes = {});

    const std::string& string() const { return text_; }
    std::size_t length() const { return text_.size(); }

    /// What the byte at @p location has. @throws Exception (NSRangeException) beyond the text's
    /// end.
    const TextAttributes& attributesAt(std::size_t location) const;
    /// Sets the shadow of a range. @throws Exception (NSRangeException) beyond the text's end.
    void addShadow(const Shadow& shadow, std::size_t location, std::size_t length);
    /// Sets all attributes of a range. @throws Exception (NSRangeException) beyond the text's end.
    void setAttributes(const TextAttributes& attributes, std::size_t location, std::size_t length);

    /// The runs that cover the text from start to end; an empty text has none.
    const std::vector<Run>& runs() const { return runs_; }

    friend bool operator==(const AttributedString&, const AttributedString&) = default;

  private:
    /// Makes run boundaries at both ends of the range; gives the index of its first run.
    std::size_t splitAt(std::size_t location, std::size_t length);

    std::string text_;
    std::vector<Run> runs_;
};

/// A picture. Immutable for its users; the backend keeps its pixels at one or more scales.
class Image {
  public:
    Image() = default;
    virtual ~Image();
    Image(const Image&) = delete;
    Image& operator=(const Image&) = delete;

    /// In points, fractions included.
    virtual Size size() const = 0;
};

/// What drawing goes to. Main thread.
class GraphicsContext {
  public:
    GraphicsContext() = default;
    virtual ~GraphicsContext();
    GraphicsContext(const GraphicsContext&) = delete;
    GraphicsContext& operator=(const GraphicsContext&) = delete;

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

/// Measures text, loads and makes images, and knows where drawing goes. Main thread.
class Graphics {
  public:
    Graphics() = default;
    virtual ~Graphics();
    Graphics(const Graphics&) = delete;
    Graphics& operator=(const Graphics&) = delete;

    /// Width and height of text on one line, in points. A font family that is not there is logged
    /// once and measured in what takes its place.
    virtual Size sizeOfText(const AttributedString& text) = 0;

    /// The image in a file, with the file of the same name and "@2x" before the extension as its
    /// double-scale pixels when there is one. A file that is missing or no image is logged, and
    /// the answer is null.
    virtual std::shared_ptr<Image> imageWithContentsOfFile(const std::string& path) = 0;

    /// The image of that name in the Resources of the program's own bundle (Bundle::mainBundle), as
    /// PNG. Null when there is none; nothing is logged then.
    virtual std::shared_ptr<Image> imageNamed(std::string_view name) = 0;

    /// Called while drawing goes to a new image.
    using Draw = std::function<void(GraphicsContext& context)>;
    /// A new image of @p size points with what @p draw draws; transparent elsewhere. Its pixels are
    /// those of the sharpest screen, their number rounded up: what lies beyond the size, at the top
    /// and at the right, is there to be drawn and is not shown. A size of 0, a negative one and one
    /// that is no number make an image without pixels, and so does one that memory cannot hold,
    /// which is logged.
    virtual std::shared_ptr<Image> imageByDrawing(Size size, const Draw& draw) = 0;

    /// Where drawing goes now. @throws Exception outside of drawing.
    virtual GraphicsContext& currentContext() = 0;
};

Graphics& graphics();
template <>
Graphics* exchangeService<Graphics>(Graphics* service);

} // namespace platform
