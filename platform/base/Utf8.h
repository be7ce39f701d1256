#pragma once

#include <cstddef>
#include <string_view>

namespace platform {

/// Returns the length in bytes of the well-formed UTF-8 sequence at the start of @p text. Returns
/// 0 if @p text is empty or begins with a malformed sequence.
std::size_t utf8SequenceLength(std::string_view text);

} // namespace platform
