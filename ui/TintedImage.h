#pragma once

#include "platform/Graphics.h"

#include <memory>

/// Tinting of images. Each operation returns a new image of the size of @p image and leaves
/// @p image unchanged. If memory runs out, it logs this and returns null. Main thread only.
namespace HalvexTintedImage {

/// Tints the painted parts of @p image with @p color; transparent parts stay transparent. An opaque
/// colour is applied with an alpha of 0.25, any other with its own alpha. A pattern colour has no
/// colour components and tints nothing.
std::shared_ptr<platform::Image> tintedImageWithColor(const platform::Image& image,
                                                      const platform::Color& color);

/// Draws @p image and fills its whole area with @p color, composited with @p operation.
std::shared_ptr<platform::Image> tintedImageWithColor(const platform::Image& image,
                                                      const platform::Color& color,
                                                      platform::CompositingOperation operation);

} // namespace HalvexTintedImage
