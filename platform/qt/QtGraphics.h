#pragma once

#include "platform/Graphics.h"
#include "platform/base/NonCopyable.h"
#include "platform/qt/TextLines.h"

#include <QColor>
#include <QFont>
#include <QImage>
#include <QSizeF>

#include <memory>
#include <optional>
#include <string>

namespace platform::qt {

class QtGraphicsContext;

/// Text and images by Qt. Making one costs nothing: fonts are looked for when text first needs
/// them. It outlives the contexts made with it. Main thread, with a QGuiApplication.
class QtGraphics final : public Graphics {
  public:
    /// @p defaultFont draws text that names no font; the application's own when not given.
    explicit QtGraphics(std::optional<QFont> defaultFont = {});
    ~QtGraphics() override;

    /// The menu bar's font, for text that names none.
    QFont defaultFont() const;

    /// Advance width, and the tallest ascent plus the deepest descent: the very box that drawText
    /// uses, whatever the scale. Inside of drawing, the current context's default font counts.
    /// Empty text is 0 x 0. Line ends and other control characters measure, and draw, as blanks.
    Size sizeOfText(const AttributedString& text) override;
    std::shared_ptr<Image> imageWithContentsOfFile(const std::string& path) override;
    std::shared_ptr<Image> imageNamed(std::string_view name) override;
    /// Text has no colour fringes there, for nobody knows yet what it will lie on.
    std::shared_ptr<Image> imageByDrawing(Size size, const Draw& draw) override;

    /// How many pixels make a point in the images that are drawn from now on; those of the sharpest
    /// screen when not given.
    void setDrawingScale(std::optional<double> scale) { drawingScale_ = scale; }
    /// @throws Exception (NSInternalInconsistencyException) while no ScopedContext is alive.
    GraphicsContext& currentContext() override;

  private:
    friend class ScopedContext;

    std::optional<QFont> defaultFont_;
    std::optional<double> drawingScale_;
    TextLines lines_;
    QtGraphicsContext* current_ = nullptr;
};

/// Makes drawing go to an image for a scope. Scopes nest; the innermost one counts. Between two
/// operations the image holds all that was drawn so far and may be read or copied.
/// Main thread.
class ScopedContext : NonCopyable {
  public:
    /// The image's top left pixel is the point (0, points.height()); a point is @p scale pixels.
    /// An image of another format becomes Format_ARGB32_Premultiplied; its device pixel ratio is
    /// neither used nor changed; a null image takes drawing without effect.
    /// @p defaultTextColor and @p defaultFont draw text that names none (the font of @p graphics
    /// when not given). @p graphics and @p target outlive the scope.
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
