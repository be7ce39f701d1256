#pragma once

#include "platform/GraphicsContext.h"
#include "platform/base/NonCopyable.h"
#include "platform/base/Service.h"
#include "platform/values/AttributedString.h"
#include "platform/values/Geometry.h"
#include "platform/values/Image.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace platform {

/// Text measurement, images, and the current graphics context. Main thread only.
class Graphics : NonCopyable {
  public:
    virtual ~Graphics();

    /// Returns the width and height of @p text on one line, in points. A missing font family is
    /// replaced by another one and logged once.
    virtual Size sizeOfText(const AttributedString& text) = 0;

    /// Loads an image. If there is a file with the same name plus "@2x" before the extension, it
    /// provides the pixels at double scale. If the name ends in "Template", not counting the
    /// extension, the image is a template. Returns null and logs the path if the file is missing or
    /// not an image.
    virtual std::shared_ptr<Image> imageWithContentsOfFile(const std::string& path) = 0;

    /// Loads the PNG image "name.png" from the resources of Bundle::mainBundle(), like
    /// imageWithContentsOfFile. Returns null, without logging, if there is no such file.
    virtual std::shared_ptr<Image> imageNamed(std::string_view name) = 0;

    using Draw = std::function<void(GraphicsContext& context)>;
    /// Creates an image of @p size points, initially transparent, and calls @p draw with its
    /// context. The image has the scale of the sharpest screen. Its width and height in pixels are
    /// rounded up; the excess at the top and right can be drawn to but is not shown. If the size is
    /// not positive, the image has no pixels. The same applies if the image is too large or memory
    /// runs out, which is logged.
    virtual std::shared_ptr<Image> imageByDrawing(Size size, const Draw& draw) = 0;

    /// Returns an image with the same alpha that is a template: drawing it gives each pixel the
    /// colour of text without a colour, so that it is legible in a light and in a dark bar. Returns
    /// null for null, and @p image itself if it is a template. @throws Exception if another backend
    /// has made the image.
    virtual std::shared_ptr<Image> templateImage(const std::shared_ptr<Image>& image) = 0;

    /// Returns the context that is being drawn to. @throws Exception outside of drawing.
    virtual GraphicsContext& currentContext() = 0;
};

/// Returns the host's graphics. Aborts if the host has not installed any.
Graphics& graphics();
template <>
Graphics* exchangeService<Graphics>(Graphics* service);

} // namespace platform
