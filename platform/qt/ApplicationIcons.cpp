#include "platform/qt/ApplicationIcons.h"

#include "platform/qt/QtImage.h"
#include "platform/qt/Strings.h"

#include <QFileInfo>
#include <QIcon>
#include <QPainter>
#include <QPixmap>

#include <cmath>
#include <functional>
#include <utility>

namespace platform::qt {
namespace {

constexpr double kMaximumSize = 512; // points
constexpr std::uint32_t kMaximumSide = 1024;

/// Returns the picture, scaled to the square if it has another size.
QImage fitted(const QImage& picture, int side) {
    if (picture.isNull() || picture.size() == QSize(side, side))
        return picture;
    const QImage scaled = picture.convertToFormat(QImage::Format_ARGB32_Premultiplied)
                              .scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    QImage square(side, side, QImage::Format_ARGB32_Premultiplied);
    square.fill(Qt::transparent);
    QPainter(&square).drawImage((side - scaled.width()) / 2, (side - scaled.height()) / 2, scaled);
    return square;
}

using PictureForSide = std::function<QImage(int side)>;

std::shared_ptr<Image> imageOf(double size, const PictureForSide& pictureFor) {
    if (!(size >= 1 && size <= kMaximumSize))
        return nullptr;
    std::vector<QtImage::Representation> representations;
    for (const double scale : {1.0, 2.0}) {
        const int side = static_cast<int>(std::lround(size * scale));
        const QImage picture = fitted(pictureFor(side), side);
        if (picture.isNull())
            return nullptr;
        representations.push_back({picture, side / size});
    }
    return std::make_shared<QtImage>(std::move(representations));
}

QIcon fileIcon(const QString& path) {
    // Opening a FIFO blocks until it has a writer.
    return QFileInfo(path).isFile() ? QIcon(path) : QIcon();
}

QIcon themeIcon(const QString& name) {
    const QIcon icon = QIcon::fromTheme(name);
    // Some entries give the name of a file.
    const QString suffix = QFileInfo(name).suffix();
    const bool isFile = suffix == "png" || suffix == "svg" || suffix == "xpm";
    return icon.isNull() && isFile ? QIcon::fromTheme(name.chopped(suffix.size() + 1)) : icon;
}

/// Returns the pictures, which refer to @p value.
std::vector<QImage> picturesIn(const std::vector<std::uint32_t>& value) {
    std::vector<QImage> pictures;
    for (std::size_t start = 0; start + 2 < value.size();) {
        const std::uint64_t width = value[start], height = value[start + 1];
        const std::size_t rest = value.size() - start - 2;
        // The sum of the pixels below cannot overflow.
        if (width == 0 || height == 0 || width > rest || height > rest / width)
            break;
        if (width <= kMaximumSide && height <= kMaximumSide)
            pictures.emplace_back(reinterpret_cast<const uchar*>(&value[start + 2]),
                                  static_cast<int>(width), static_cast<int>(height),
                                  QImage::Format_ARGB32);
        start += 2 + static_cast<std::size_t>(width * height);
    }
    return pictures;
}

/// Returns the smallest picture that need not be enlarged, or else the largest one.
QImage bestPicture(const std::vector<QImage>& pictures, int side) {
    const auto isBetter = [side](const QImage& one, const QImage& other) {
        const bool oneFits = one.width() >= side, otherFits = other.width() >= side;
        if (oneFits != otherFits)
            return oneFits;
        return oneFits ? one.width() < other.width() : one.width() > other.width();
    };
    const auto best = std::min_element(pictures.begin(), pictures.end(), isBetter);
    return best == pictures.end() ? QImage() : *best;
}

} // namespace

std::shared_ptr<Image> iconNamed(const std::string& name, double size) {
    if (name.empty())
        return nullptr;
    const QIcon icon = name.starts_with('/') ? fileIcon(qString(name)) : themeIcon(qString(name));
    return imageOf(size, [&](int side) { return icon.pixmap(QSize(side, side), 1.0).toImage(); });
}

std::shared_ptr<Image> iconFromProperty(const std::vector<std::uint32_t>& value, double size) {
    const auto pictures = picturesIn(value);
    // Copied, because the image outlives the value.
    return imageOf(size, [&](int side) { return bestPicture(pictures, side).copy(); });
}

} // namespace platform::qt
