#include "platform/qt/QtImage.h"

#include "platform/Log.h"
#include "platform/qt/Strings.h"

#include <QFileInfo>
#include <QImageReader>
#include <QPainter>

#include <algorithm>
#include <utility>

namespace platform::qt {
namespace {

constexpr QImage::Format kFormat = QImage::Format_ARGB32_Premultiplied;

/// Returns a null image, and logs why, if the file cannot be read.
QImage readImage(const QString& path) {
    const auto fail = [&](const QString& reason) {
        logLine("image %@ cannot be read: %@", path.toStdString(), reason.toStdString());
        return QImage();
    };
    // Opening a FIFO blocks until it has a writer.
    const QFileInfo file(path);
    if (file.exists() && !file.isFile())
        return fail(QStringLiteral("It is not a regular file"));
    QImageReader reader(path);
    QImage image;
    if (!reader.read(&image) || image.isNull())
        return fail(reader.errorString());
    image.setDevicePixelRatio(1); // not 2 because the name contains "@2x"
    return image.convertToFormat(kFormat);
}

/// "x.png" → "x@2x.png".
QString siblingForScale(const QString& path, int scale) {
    const QString suffix = QFileInfo(path).suffix();
    const auto stem = suffix.isEmpty() ? path.size() : path.size() - suffix.size() - 1;
    return path.left(stem) + QStringLiteral("@%1x").arg(scale) + path.mid(stem);
}

} // namespace

QtImage::QtImage(std::vector<Representation> representations)
    : representations_(std::move(representations)) {
    if (representations_.empty())
        representations_.emplace_back();
    const Representation& base = representations_.front();
    size_ = {base.pixels.width() / base.scale, base.pixels.height() / base.scale};
    extent_ = size_;
    for (Representation& representation : representations_)
        representation.pixels.convertTo(kFormat);
    std::stable_sort(representations_.begin(), representations_.end(),
                     [](const auto& one, const auto& other) { return one.scale < other.scale; });
}

QtImage::QtImage(QImage pixels, double scale)
    : QtImage(std::vector<Representation>{{std::move(pixels), scale}}) {}

QtImage::QtImage(QImage pixels, double scale, Size size) : QtImage(std::move(pixels), scale) {
    size_ = size;
}

QtImage::~QtImage() = default;

std::shared_ptr<QtImage> QtImage::fromFile(const std::string& path) {
    const QString file = qString(path);
    std::vector<Representation> representations{{readImage(file), 1}};
    if (representations.front().pixels.isNull())
        return nullptr;
    for (const int scale : {2, 3}) {
        const QString sibling = siblingForScale(file, scale);
        if (!QFileInfo::exists(sibling))
            continue;
        if (QImage pixels = readImage(sibling); !pixels.isNull())
            representations.push_back({std::move(pixels), static_cast<double>(scale)});
    }
    auto image = std::make_shared<QtImage>(std::move(representations));
    image->isTemplate_ = QFileInfo(file).completeBaseName().endsWith(QLatin1String("Template"));
    return image;
}

std::shared_ptr<QtImage> QtImage::asTemplate() const {
    auto copy = std::make_shared<QtImage>(representations_);
    copy->size_ = size_;
    copy->extent_ = extent_;
    copy->isTemplate_ = true;
    return copy;
}

const QImage& QtImage::pixelsForScale(double scale) const {
    const auto fitting =
        std::find_if(representations_.begin(), representations_.end(),
                     [&](const Representation& candidate) { return candidate.scale >= scale; });
    return fitting == representations_.end() ? representations_.back().pixels : fitting->pixels;
}

QImage QtImage::pixelsForScale(double scale, const QColor& foreground) const {
    QImage pixels = pixelsForScale(scale);
    if (!isTemplate_ || pixels.isNull())
        return pixels;
    pixels.setDevicePixelRatio(1);
    QPainter painter(&pixels);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(pixels.rect(), foreground);
    return pixels;
}

} // namespace platform::qt
