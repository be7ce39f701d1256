#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/values/Geometry.h"

namespace platform {

/// An immutable image. The graphics backend stores its pixels at one or more scales.
class Image : NonCopyable {
  public:
    virtual ~Image();

    /// Returns the size in points, which may be fractional.
    virtual Size size() const = 0;
    /// Returns whether only the alpha counts: the image is drawn in the colour of text that has
    /// none of its own, such as the bar's text colour. See Graphics::templateImage.
    virtual bool isTemplate() const { return false; }
};

} // namespace platform
