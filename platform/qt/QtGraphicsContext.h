#pragma once

#include "platform/Graphics.h"
#include "platform/qt/Mask.h"
#include "platform/qt/TextLineCache.h"
#include "platform/qt/TextPainter.h"
#include "platform/qt/Viewport.h"

#include <QImage>

#include <memory>
#include <vector>

namespace platform::qt {

/// Draws into a premultiplied ARGB image; created by ScopedContext. Calls with numbers that are not
/// finite, or with an unknown operation, draw nothing. Main thread.
class QtGraphicsContext final : public GraphicsContext {
  public:
    /// @p lines and @p target must outlive the context.
    QtGraphicsContext(TextLineCache& lines, QImage& target, const Viewport& viewport,
                      TextPainter::Defaults defaults);
    ~QtGraphicsContext() override;

    const QFont& defaultFont() const { return defaults_.font; }

    void saveGraphicsState() override { saved_.push_back(state_); }
    /// Has no effect if no state is saved.
    void restoreGraphicsState() override;

    void translateBy(double deltaX, double deltaY) override;
    void rotateByDegrees(double angle) override;
    void scaleBy(double factorX, double factorY) override;
    void clipToPath(const BezierPath& path) override;

    void setShouldSmoothFonts(bool smooth) override { state_.text.smoothing = smooth; }
    void setTextDrawingMode(TextDrawingMode mode) override { state_.text.mode = mode; }
    void setCompositingOperation(CompositingOperation operation) override {
        state_.text.operation = operation;
    }
    void setShadow(Size offset, double blurRadius) override;

    /// See TextPainter.
    void drawText(const AttributedString& text, Point point) override;
    void drawTextInRect(const AttributedString& text, const Rect& rect) override;
    /// Draws a template in the default text colour. @throws Exception (NSInvalidArgumentException)
    /// if @p image is not a QtImage.
    void drawImage(const Image& image, const Rect& destination, const Rect& source,
                   CompositingOperation operation, double fraction) override;
    void fillRect(const Rect& rect, const Color& color, CompositingOperation operation) override;
    void fillPath(const BezierPath& path, const Color& color,
                  CompositingOperation operation) override;
    void fillPathWithGradient(const BezierPath& path, const Gradient& gradient,
                              CompositingOperation operation) override;
    void strokePath(const BezierPath& path, const StrokeStyle& style, const Color& color,
                    CompositingOperation operation) override;

  private:
    struct State {
        TextPainter::Settings text;
        Viewport viewport;
        std::shared_ptr<const Mask> clip{}; ///< null if drawing is not restricted
    };

    /// Calls @p draw with an image that covers the clip, and its viewport. Does not call it if
    /// nothing can be drawn.
    template <class Draw>
    void drawClipped(const Draw& draw);
    TextPainter textPainter(QImage& target, const Viewport& viewport) const {
        return {lines_, target, viewport, defaults_, state_.text};
    }

    TextLineCache& lines_;
    QImage& target_;
    TextPainter::Defaults defaults_;
    State state_;
    std::vector<State> saved_;
};

} // namespace platform::qt
