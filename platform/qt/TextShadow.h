#pragma once

#include "platform/qt/Compositing.h"

namespace platform::qt {

/// How far, in whole pixels, a blur of that standard deviation (in pixels) reaches.
int blurReach(double deviation);

/// Blurs a mask by a Gaussian of that standard deviation (in pixels), approximated by three boxes
/// with weighted ends; what would spread beyond the mask's area is lost.
void blur(Mask& mask, double deviation);

} // namespace platform::qt
