#pragma once

#include "platform/Graphics.h"
#include "platform/base/NonCopyable.h"
#include "platform/qt/TextLineCache.h"

#include <QColor>
#include <QFont>
#include <QImage>
#include <QSizeF>

#include <memory>
#include <optional>
#include <string>

namespace platform::qt {

class QtGraphicsContext;

/// Text and images drawn with Qt. Looks up fonts only when text is first measured or drawn. Must
/// outlive the contexts created with it. Main thread. Requires a QGuiApplication.
class QtGraphics final : public Graphics {
  public:
    /// @p defaultFont is for text that names no font; by default, the application's font.
    explicit QtGraphics(std::optional<QFont> defaultFont = {});
    ~QtGraphics() override;

    /// Returns the font for text that names none.
    QFont defaultFont() const;

    /// Returns the advance width and the largest ascent plus the largest descent. This is the
    /// box that drawText uses at every scale. While drawing, the default font is that of the
    /// current context. Empty text is 0 x 0. Line ends and control characters are measured and
    /// drawn as blanks.
    Size sizeOfText(const AttributedString& text) override;
    std::shared_ptr<Image> imageWithContentsOfFile(const std::string& path) override;
    std::shared_ptr<Image> imageNamed(std::string_view name) override;
    /// Draws text without subpixel antialiasing, because the background is not known yet. An image
    /// that is too large has no pixels, and "cannot create an image of %@ x %@ points: it is too
    /// large" is logged.
    std::shared_ptr<Image> imageByDrawing(Size size, const Draw& draw) override;

    /// @throws Exception (NSInvalidArgumentException) if @p image is not a QtImage.
    std::shared_ptr<Image> templateImage(const std::shared_ptr<Image>& image) override;

    /// Sets the number of pixels per point in images that are drawn from now on; by default, that
    /// of the screen with the highest resolution.
    void setDrawingScale(std::optional<double> scale) { drawingScale_ = scale; }
    /// @throws Exception (NSInternalInconsistencyException) if no ScopedContext exists.
    GraphicsContext& currentContext() override;

  private:
    friend class ScopedContext;

    std::optional<QFont> defaultFont_;
    std::optional<double> drawingScale_;
    TextLineCache lines_;
    QtGraphicsContext* current_ = nullptr;
};

/// Makes an image the target of drawing for the object's lifetime. Scopes nest; the innermost one
/// is current. The image may be read and copied between drawing operations. Main thread.
class ScopedContext : NonCopyable {
  public:
    /// The image's top left pixel is at the point (0, points.height()). @p scale is the number of
    /// pixels per point; the image's device pixel ratio is ignored and not changed. The image is
    /// converted to Format_ARGB32_Premultiplied. Drawing to a null image has no effect.
    /// @p defaultTextColor and @p defaultFont (by default, the font of @p graphics) are for text
    /// that names none. @p graphics and @p target must outlive the scope.
    ScopedContext(QtGraphics& graphics, QImage& target, QSizeF points, double scale,
                  QColor defaultTextColor = Qt::black, std::optional<QFont> defaultFont = {});
    ~ScopedContext();

    GraphicsContext& context();

  private:
    QtGraphics& graphics_;
    std::unique_ptr<QtGraphicsContext> context_;
    QtGraphicsContext* previous_;
};

} // namespace platform::qt
