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

/// Measures text, loads and makes images, and knows where drawing goes. Main thread.
class Graphics : NonCopyable {
  public:
    virtual ~Graphics();

    /// Width and height of text on one line, in points. A font family that is not there is logged
    /// once and measured in what takes its place.
    virtual Size sizeOfText(const AttributedString& text) = 0;

    /// The image in a file, with the file of the same name and "@2x" before the extension as its
    /// double-scale pixels when there is one. A file that is missing or no image is logged, and
    /// the answer is null.
    virtual std::shared_ptr<Image> imageWithContentsOfFile(const std::string& path) = 0;

    /// The image of that name in the Resources of the program's own bundle (Bundle::mainBundle), as
    /// PNG. Null when there is none; nothing is logged then.
    virtual std::shared_ptr<Image> imageNamed(std::string_view name) = 0;

    /// Called while drawing goes to a new image.
    using Draw = std::function<void(GraphicsContext& context)>;
    /// A new image of @p size points with what @p draw draws; transparent elsewhere. Its pixels are
    /// those of the sharpest screen, their number rounded up: what lies beyond the size, at the top
    /// and at the right, is there to be drawn and is not shown. A size of 0, a negative one and one
    /// that is no number make an image without pixels, and so does one that memory cannot hold,
    /// which is logged.
    virtual std::shared_ptr<Image> imageByDrawing(Size size, const Draw& draw) = 0;

    /// Where drawing goes now. @throws Exception outside of drawing.
    virtual GraphicsContext& currentContext() = 0;
};

Graphics& graphics();
template <>
Graphics* exchangeService<Graphics>(Graphics* service);

} // namespace platform
