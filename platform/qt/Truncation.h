#pragma once

#include "platform/Graphics.h"

#include <functional>

namespace platform::qt {

/// Returns @p text if it is at most @p width wide. Otherwise returns as much of its beginning as
/// fits together with an ellipsis, cut between grapheme clusters, or empty text if the ellipsis
/// does not fit. @p measure returns the size of a text. The running time depends on the length of
/// the result, not on that of @p text.
AttributedString truncatedToWidth(const AttributedString& text, double width,
                                  const std::function<Size(const AttributedString&)>& measure);

} // namespace platform::qt
