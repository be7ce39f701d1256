#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/values/Geometry.h"

namespace platform {

/// A picture. Immutable for its users; the backend keeps its pixels at one or more scales.
class Image : NonCopyable {
  public:
    virtual ~Image();

    /// In points, possibly fractional.
    virtual Size size() const = 0;
};

} // namespace platform
