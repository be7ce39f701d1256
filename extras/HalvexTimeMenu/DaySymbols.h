#pragma once

#include "platform/values/Image.h"

#include <memory>

/// Returns a template image of 12 × 12 points for places where the sun is up.
std::shared_ptr<platform::Image> sunSymbol();
/// Same for places where it is down.
std::shared_ptr<platform::Image> moonSymbol();
/// Returns an empty image of that size.
std::shared_ptr<platform::Image> blankSymbol();
