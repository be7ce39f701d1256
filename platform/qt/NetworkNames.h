#pragma once

#include <string>
#include <string_view>

namespace platform::qt {

/// Returns the text to show for the bytes of an ssid. Malformed bytes, control characters, and
/// characters that set the direction of the text around them become U+FFFD.
std::string nameOfSsid(std::string_view ssid);

} // namespace platform::qt
