#pragma once

#include "platform/Graphics.h"

#include <QColor>
#include <QImage>

#include <memory>
#include <string>
#include <vector>

namespace platform::qt {

/// An image with pixels for one or more scales. Immutable. Main thread.
class QtImage final : public Image {
  public:
    /// Pixels in any format. They are converted to premultiplied ARGB.
    struct Representation {
        QImage pixels;
        double scale = 1; ///< pixels per point
    };

    /// The first representation determines the size of the image. The others contain the same area
    /// with more or fewer pixels. If the first one is null, the size is 0 x 0.
    explicit QtImage(std::vector<Representation> representations);
    explicit QtImage(QImage pixels, double scale = 1);
    /// Creates an image of @p size points. The pixels start at its bottom left corner and may
    /// extend beyond it at the top and at the right.
    QtImage(QImage pixels, double scale, Size size);
    ~QtImage() override;

    /// Loads an image file, and its "@2x" and "@3x" siblings if they exist. It is a template if the
    /// name before the extension ends in "Template". Returns null, and logs
    /// "image %@ cannot be read: %@", if the file is missing, is not a regular file or an image, or
    /// exceeds QImageReader's allocation limit. An unreadable sibling is logged and ignored.
    static std::shared_ptr<QtImage> fromFile(const std::string& path);

    /// Returns a copy that is a template. The copy shares the pixels.
    std::shared_ptr<QtImage> asTemplate() const;

    Size size() const override { return size_; }
    bool isTemplate() const override { return isTemplate_; }
    /// Returns the area that the pixels cover, in points from the bottom left corner.
    Size extent() const { return extent_; }

    /// Returns the pixels to draw at @p scale pixels per point: those of the lowest scale that is
    /// at least @p scale, or else of the highest. Returns a null image if the size is 0 x 0.
    const QImage& pixelsForScale(double scale) const;
    /// Returns the same pixels, in @p foreground if this is a template.
    QImage pixelsForScale(double scale, const QColor& foreground) const;

  private:
    std::vector<Representation> representations_; // by ascending scale, never empty
    Size size_;
    Size extent_;
    bool isTemplate_ = false;
};

} // namespace platform::qt
