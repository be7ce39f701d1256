#include "platform/qt/QtGraphics.h"

#include "platform/Exception.h"
#include "platform/qt/QtGraphicsContext.h"
#include "platform/qt/QtImage.h"

#include <QGuiApplication>

#include <utility>

namespace platform::qt {

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
