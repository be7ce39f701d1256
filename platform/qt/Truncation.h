#pragma once

#include "platform/Graphics.h"

#include <functional>

namespace platform::qt {

/// Text that is no wider than @p width: the text itself, or as much of it as fits before an
/// ellipsis, cut between characters as people count them; empty when not even the ellipsis fits.
/// @p measure gives a text's size. Takes time by what fits, not by how long the text is.
AttributedString truncatedToWidth(const AttributedString& text, double width,
                                  const std::function<Size(const AttributedString&)>& measure);

} // namespace platform::qt
