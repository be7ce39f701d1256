#pragma once

#include "platform/Graphics.h"
#include "platform/qt/TextLineCache.h"
#include "platform/qt/Viewport.h"

#include <QColor>
#include <QFont>
#include <QImage>
#include <QTransform>

#include <optional>
#include <vector>

namespace platform::qt {

/// Draws one-line text and its shadows into a premultiplied ARGB image. Main thread.
///
/// Draws all shadows below all of the text. Uses subpixel antialiasing only for text that is drawn
/// over existing pixels: not with shadows, and only with source-over operations.
class TextPainter {
  public:
    /// The settings of a graphics context.
    struct Settings {
        bool smoothing = true;
        TextDrawingMode mode = TextDrawingMode::Fill;
        CompositingOperation operation = CompositingOperation::SourceOver;
        std::optional<Shadow> shadow; ///< for text that has none of its own
    };
    /// The colour and the font of text whose attributes have none.
    struct Defaults {
        QColor color;
        QFont font;
    };

    /// The arguments must outlive the painter.
    TextPainter(TextLineCache& lines, QImage& target, const Viewport& viewport,
                const Defaults& defaults, const Settings& settings);

    /// Draws @p text with the lower left corner of its box at @p point.
    void draw(const AttributedString& text, Point point);
    /// Draws @p text at the top of @p rect, aligned and truncated by the paragraph style of the
    /// first run, and clipped to the rectangle.
    void drawInRect(const AttributedString& text, const Rect& rect);
    /// The same, without clipping.
    void drawAtTopOfRect(const AttributedString& text, const Rect& rect);

  private:
    using Parts = std::vector<TextLine::Part>;

    QColor colorOf(const TextLine::Part& part) const;
    std::optional<Shadow> shadowOf(const TextAttributes& attributes) const;
    bool hasShadow(const AttributedString& text) const;
    AttributedString fitted(const AttributedString& text, double width) const;
    Size sizeOf(const AttributedString& text) const;
    QTransform lineToPixels(Point point, Size size) const;

    void drawShadows(const Parts& parts, const QTransform& toPixels);
    void drawShadow(const Shadow& shadow, Parts::const_iterator first, Parts::const_iterator last,
                    const QTransform& toPixels);
    void fill(const TextLine& line, const QTransform& toPixels);
    void drawDirectly(const Parts& parts, const QTransform& toPixels);
    void drawThroughLayer(const Parts& parts, const QTransform& toPixels);

    TextLineCache& lines_;
    QImage& target_;
    const Viewport& viewport_;
    const Defaults& defaults_;
    const Settings& settings_;
};

} // namespace platform::qt
