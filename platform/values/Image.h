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
};

} // namespace platform
