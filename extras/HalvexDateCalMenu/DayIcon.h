#pragma once

#include "platform/values/Color.h"
#include "platform/values/Image.h"

#include <memory>
#include <optional>

namespace extras {

/// Draws a page of a calendar with @p day, from 1 to 31, cut out of it. All straight edges are at
/// even points, so that they are sharp at 1, 1.5 and 2 pixels per point. Without @p color, returns
/// a template image, otherwise a page of that colour. Main thread only.
std::shared_ptr<platform::Image> dayIcon(int day, const std::optional<platform::Color>& color = {});

} // namespace extras
