#pragma once

#include "platform/Graphics.h"
#include "platform/qt/TextLines.h"

#include <QColor>
#include <QFont>
#include <QImage>
#include <QPainterPath>
#include <QSizeF>
#include <QTransform>

#include <optional>
#include <vector>

namespace platform::qt {

/// Draws into an image of Format_ARGB32_Premultiplied. Made by ScopedContext, which says what the
/// parameters are. Settings, rectangles and points that are no finite numbers, and operations that
/// have no number, draw nothing. Main thread.
class QtGraphicsContext final : public GraphicsContext {
  public:
    QtGraphicsContext(TextLines& lines, QImage& target, QSizeF points, double scale,
                      QColor defaultTextColor, const QFont& defaultFont);
    ~QtGraphicsContext() override;

    const QFont& defaultFont() const { return defaultFont_; }

    void saveGraphicsState() override { saved_.push_back(state_); }
    /// Does nothing when nothing was saved.
    void restoreGraphicsState() override;

    void setShouldSmoothFonts(bool smooth) override { state_.smoothing = smooth; }
    void setTextDrawingMode(TextDrawingMode mode) override { state_.textMode = mode; }
    void setCompositingOperation(CompositingOperation operation) override {
        state_.operation = operation;
    }
    void setShadow(Size offset, double blurRadius) override;

    /// All shadows lie under all of the text. Colour fringes are only used over the ground itself:
    /// not with shadows, nor with an operation other than SourceOver.
    void drawText(const AttributedString& text, Point point) override;
    void drawTextInRect(const AttributedString& text, const Rect& rect) override;
    /// @throws Exception (NSInvalidArgumentException) for an image of another backend.
    void drawImage(const Image& image, const Rect& destination, const Rect& source,
                   CompositingOperation operation, double fraction) override;
    void fillRect(const Rect& rect, const Color& color, CompositingOperation operation) override;
    void fillPath(const BezierPath& path, const Color& color,
                  CompositingOperation operation) override;

  private:
    struct State {
        bool smoothing = true;
        TextDrawingMode textMode = TextDrawingMode::Fill;
        CompositingOperation operation = CompositingOperation::SourceOver;
        std::optional<Shadow> shadow;
    };
    using Parts = std::vector<TextLine::Part>;

    QPointF toPixels(Point point) const;
    QRectF toPixels(const Rect& rect) const;
    QPainterPath outlineOf(const BezierPath& path) const;
    QColor colorOf(const TextLine::Part& part) const;
    std::optional<Shadow> shadowOf(const TextAttributes& attributes) const;
    bool usesShadow(const AttributedString& text) const;

    void drawShadows(const Parts& parts, const QTransform& toPixels);
    void drawShadow(const Shadow& shadow, Parts::const_iterator first, Parts::const_iterator last,
                    const QTransform& toPixels);
    void fill(const TextLine& line, const QTransform& toPixels);
    void drawOver(const Parts& parts, const QTransform& toPixels);
    void drawThroughLayer(const Parts& parts, const QTransform& toPixels);

    TextLines& lines_;
    QImage& target_;
    QSizeF points_;
    double scale_;
    QColor defaultTextColor_;
    QFont defaultFont_;
    State state_;
    std::vector<State> saved_;
};

} // namespace platform::qt
