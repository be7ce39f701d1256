#pragma once

#include "platform/values/Image.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// Icons in a square of @p size points, at 1 and 2 pixels per point. Smaller and other pictures are
/// scaled to fit into it. Null if the icon does not exist or cannot be read. Main thread.
namespace platform::qt {

/// Loads the icon that a desktop entry names: a name in the icon theme or an absolute path.
std::shared_ptr<Image> iconNamed(const std::string& name, double size);

/// Reads the value of _NET_WM_ICON: for each picture width, height, and pixels with 8 bits each of
/// alpha, red, green and blue. Pictures of more than 1024 pixels a side are left out, and so is
/// everything from the first one that is not complete.
std::shared_ptr<Image> iconFromProperty(const std::vector<std::uint32_t>& value, double size);

} // namespace platform::qt
