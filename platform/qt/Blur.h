#pragma once

#include "platform/qt/Mask.h"

namespace platform::qt {

/// Returns how many pixels beyond a shape a blur with this standard deviation (in pixels) extends.
int blurRadius(double deviation);

/// Blurs a mask by a Gaussian with this standard deviation (in pixels). The Gaussian is
/// approximated by three box filters with weighted ends. The mask keeps its area; coverage that
/// spreads beyond it is lost.
void blur(Mask& mask, double deviation);

} // namespace platform::qt
