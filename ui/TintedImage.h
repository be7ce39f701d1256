#pragma once

#include "platform/Graphics.h"

#include <memory>

/// Images in other colours. Each operation gives a new image of the size of @p image, which it does
/// not change. Main thread.
namespace HalvexTintedImage {

/// @p image with @p color over what is painted in it; what is transparent stays so. An opaque
/// colour tints by a quarter, one with an alpha of its own by that. A pattern colour has no
/// components, and tints nothing.
std::shared_ptr<platform::Image> tintedImageWithColor(const platform::Image& image,
                                                      const platform::Color& color);

/// @p image with all of its area filled with @p color by @p operation.
std::shared_ptr<platform::Image> tintedImageWithColor(const platform::Image& image,
                                                      const platform::Color& color,
                                                      platform::CompositingOperation operation);

} // namespace HalvexTintedImage
