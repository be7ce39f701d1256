#pragma once

#include <string>
#include <string_view>

namespace platform::qt {

/// Returns the text to show for the bytes of an ssid: each malformed or control byte becomes
/// U+FFFD.
std::string nameOfSsid(std::string_view ssid);

} // namespace platform::qt
