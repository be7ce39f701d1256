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

/// What a painter can count; and a gibibyte.
constexpr double kLargestSide = 32767;
constexpr double kMostPixels = 1 << 28;

/// As many as a length needs, a hair of a pixel not counted: 0.1 x 30 is more than 3.
double pixelsFor(double points, double scale) {
    const double pixels = points * scale;
    return pixels > 0 ? std::ceil(pixels * (1 - 1e-12)) : 0;
}

/// Transparent pixels; a null image when there is no memory. The system's new memory is clear: it
/// is not cleared again.
QImage clearPixels(int width, int height) {
    constexpr std::ptrdiff_t kBytes = 4; // a pixel
    const auto size = static_cast<std::size_t>(width * kBytes * height);
    auto* const memory = static_cast<uchar*>(std::calloc(size, 1));
    if (!memory)
        return {};
    useLargePages(memory, size);
    return {memory,    width, height, width * kBytes, QImage::Format_ARGB32_Premultiplied,
            std::free, memory};
}

/// Transparent pixels for a size in points; none, and a line in the log, when there cannot be any.
QImage blankPixels(Size size, double scale) {
    const double width = pixelsFor(size.width, scale);
    const double height = pixelsFor(size.height, scale);
    if (width == 0 || height == 0)
        return {};
    QImage pixels;
    if (width <= kLargestSide && height <= kLargestSide && width * height <= kMostPixels)
        pixels = clearPixels(static_cast<int>(width), static_cast<int>(height));
    if (pixels.isNull())
        logLine("there is no room for an image of %@ x %@ points", std::to_string(size.width),
                std::to_string(size.height));
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
    // Advances do not depend on the smoothing; text in the bar is drawn without.
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
    QImage pixels = blankPixels(size, scale);
    {
        const QSizeF points(pixels.width() / scale, pixels.height() / scale);
        ScopedContext scope(*this, pixels, points, scale);
        scope.context().setShouldSmoothFonts(false);
        draw(scope.context());
    }
    return std::make_shared<QtImage>(std::move(pixels), scale, size);
}

GraphicsContext& QtGraphics::currentContext() {
    if (!current_)
        throw Exception("NSInternalInconsistencyException",
                        "there is no graphics context outside of drawing");
    return *current_;
}

ScopedContext::ScopedContext(QtGraphics& graphics, QImage& target, QSizeF points, double scale,
                             QColor defaultTextColor, std::optional<QFont> defaultFont)
    : graphics_(graphics) {
    if (target.format() != QImage::Format_ARGB32_Premultiplied)
        target.convertTo(QImage::Format_ARGB32_Premultiplied);
    context_ = std::make_unique<QtGraphicsContext>(
        graphics.lines_, target, points, scale, defaultTextColor,
        defaultFont ? *defaultFont : graphics.defaultFont());
    previous_ = std::exchange(graphics.current_, context_.get());
}

ScopedContext::~ScopedContext() {
    graphics_.current_ = previous_;
}

GraphicsContext& ScopedContext::context() {
    return *context_;
}

} // namespace platform::qt
