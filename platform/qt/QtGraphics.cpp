#include "platform/qt/QtGraphics.h"

#include "platform/Bundle.h"
#include "platform/Log.h"
#include "platform/base/Exception.h"
#include "platform/base/LargePages.h"
#include "platform/qt/QtGraphicsContext.h"
#include "platform/qt/QtImage.h"

#include <QGuiApplication>

#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <utility>

namespace platform::qt {
namespace {

constexpr double kMaximumSide = 32767;     // the limit of QPainter's coordinates
constexpr double kMaximumPixels = 1 << 28; // 1 GiB

/// Rounds up to whole pixels, but ignores rounding errors: 0.1 * 3 * 10 is more than 3.
double pixelsFor(double points, double scale) {
    const double pixels = points * scale;
    return pixels > 0 ? std::ceil(pixels * (1 - 1e-12)) : 0;
}

/// Returns a null image if out of memory. Uses calloc because QImage::fill would also clear memory
/// that the system has just provided, which is already zero.
QImage transparentPixels(int width, int height) {
    constexpr std::ptrdiff_t kBytesPerPixel = 4;
    const auto size = static_cast<std::size_t>(width * kBytesPerPixel * height);
    auto* const memory = static_cast<uchar*>(std::calloc(size, 1));
    if (!memory)
        return {};
    useLargePages(memory, size);
    return {memory,    width, height, width * kBytesPerPixel, QImage::Format_ARGB32_Premultiplied,
            std::free, memory};
}

/// Returns transparent pixels for a size in points. Returns a null image for an empty size, and for
/// one that is too large, which is logged.
QImage canvasPixels(Size size, double scale) {
    const double width = pixelsFor(size.width, scale);
    const double height = pixelsFor(size.height, scale);
    if (width == 0 || height == 0)
        return {};
    QImage pixels;
    if (width <= kMaximumSide && height <= kMaximumSide && width * height <= kMaximumPixels)
        pixels = transparentPixels(static_cast<int>(width), static_cast<int>(height));
    if (pixels.isNull())
        logLine("cannot create an image of %@ x %@ points: it is too large",
                std::to_string(size.width), std::to_string(size.height));
    return pixels;
}

} // namespace

QtGraphics::QtGraphics(std::optional<QFont> defaultFont) : defaultFont_(std::move(defaultFont)) {}

QtGraphics::~QtGraphics() = default;

QFont QtGraphics::defaultFont() const {
    return defaultFont_ ? *defaultFont_ : QGuiApplication::font();
}

Size QtGraphics::sizeOfText(const AttributedString& text) {
    const QFont font = current_ ? current_->defaultFont() : defaultFont();
    // The smoothing does not affect the size. The bar draws with this one, so its lines are cached.
    return lines_.line(text, font, FontSmoothing::Greyscale)->size();
}

std::shared_ptr<Image> QtGraphics::imageWithContentsOfFile(const std::string& path) {
    return QtImage::fromFile(path);
}

std::shared_ptr<Image> QtGraphics::imageNamed(std::string_view name) {
    const auto path = Bundle::mainBundle()->pathForResource(name, "png");
    return path ? imageWithContentsOfFile(*path) : nullptr;
}

std::shared_ptr<Image> QtGraphics::imageByDrawing(Size size, const Draw& draw) {
    const double scale = drawingScale_ ? *drawingScale_ : qGuiApp->devicePixelRatio();
    QImage pixels = canvasPixels(size, scale);
    {
        const QSizeF points(pixels.width() / scale, pixels.height() / scale);
        ScopedContext scope(*this, pixels, points, scale);
        scope.context().setShouldSmoothFonts(false);
        draw(scope.context());
    }
    return std::make_shared<QtImage>(std::move(pixels), scale, size);
}

std::shared_ptr<Image> QtGraphics::templateImage(const std::shared_ptr<Image>& image) {
    if (!image || image->isTemplate())
        return image;
    const auto* const picture = dynamic_cast<const QtImage*>(image.get());
    if (!picture)
        throw Exception(kInvalidArgumentException, "cannot use an image of another backend");
    return picture->asTemplate();
}

GraphicsContext& QtGraphics::currentContext() {
    if (!current_)
        throw Exception("NSInternalInconsistencyException",
                        "no graphics context: nothing is being drawn");
    return *current_;
}

ScopedContext::ScopedContext(QtGraphics& graphics, QImage& target, QSizeF points, double scale,
                             QColor defaultTextColor, std::optional<QFont> defaultFont)
    : graphics_(graphics) {
    if (target.format() != QImage::Format_ARGB32_Premultiplied)
        target.convertTo(QImage::Format_ARGB32_Premultiplied);
    context_ = std::make_unique<QtGraphicsContext>(
        graphics.lines_, target, Viewport{points.height(), scale},
        TextPainter::Defaults{defaultTextColor,
                              defaultFont ? *defaultFont : graphics.defaultFont()});
    previous_ = std::exchange(graphics.current_, context_.get());
}

ScopedContext::~ScopedContext() {
    graphics_.current_ = previous_;
}

GraphicsContext& ScopedContext::context() {
    return *context_;
}

} // namespace platform::qt
