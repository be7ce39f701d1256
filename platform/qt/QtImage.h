#pragma once

#include "platform/Graphics.h"

#include <QImage>

#include <memory>
#include <string>
#include <vector>

namespace platform::qt {

/// A picture as QImages, one for each scale that it is known at. Immutable. Main thread.
class QtImage final : public Image {
  public:
    /// Pixels (any format; kept as premultiplied ARGB) and how many of them make a point.
    struct Representation {
        QImage pixels;
        double scale = 1;
    };

    /// The first representation is the base: it alone says how large the image is. The others show
    /// the same area with more or fewer pixels. A null base makes an image of size 0 x 0.
    explicit QtImage(std::vector<Representation> representations);
    explicit QtImage(QImage pixels, double scale = 1);
    /// What was drawn at @p scale: pixels from the bottom left on, some of which may lie beyond
    /// @p size at the top and at the right.
    QtImage(QImage pixels, double scale, Size size);
    ~QtImage() override;

    /// The image in a file, with its "@2x" and "@3x" siblings when they are there.
    /// Null when the file itself is missing, no regular file, no image, or beyond QImageReader's
    /// allocation limit; logged as "image %@ cannot be read: %@". A broken sibling is logged the
    /// same way and left out.
    /// @p path is UTF-8.
    static std::shared_ptr<QtImage> fromFile(const std::string& path);

    /// Points: the base's pixels divided by its scale.
    Size size() const override { return size_; }
    /// The area in points that the pixels cover, from the bottom left on.
    Size extent() const { return extent_; }

    /// The pixels to draw with where a point is @p scale pixels: those of the lowest scale that
    /// needs no enlarging, else those of the highest. Null for an image of no size.
    const QImage& pixelsForScale(double scale) const;

  private:
    std::vector<Representation> representations_; // by rising scale, never empty
    Size size_;
    Size extent_;
};

} // namespace platform::qt
