#pragma once

#include "platform/Graphics.h"
#include "platform/qt/TextLineCache.h"
#include "platform/qt/TextPainter.h"
#include "platform/qt/Viewport.h"

#include <QImage>

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

    void saveGraphicsState() override { saved_.push_back(settings_); }
    /// Has no effect if no state is saved.
    void restoreGraphicsState() override;

    void setShouldSmoothFonts(bool smooth) override { settings_.smoothing = smooth; }
    void setTextDrawingMode(TextDrawingMode mode) override { settings_.mode = mode; }
    void setCompositingOperation(CompositingOperation operation) override {
        settings_.operation = operation;
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

  private:
    TextPainter textPainter() { return {lines_, target_, viewport_, defaults_, settings_}; }

    TextLineCache& lines_;
    QImage& target_;
    Viewport viewport_;
    TextPainter::Defaults defaults_;
    TextPainter::Settings settings_;
    std::vector<TextPainter::Settings> saved_;
};

} // namespace platform::qt
