#pragma once

#include "platform/values/PropertyList.h"

#include <string>

namespace apps {

/// Returns @p value as JSON, indented by two spaces and ending in a line feed. The text is always
/// valid UTF-8: ill-formed sequences in strings become U+FFFD. Dictionaries keep their order.
/// Integers are exact over their full range. Reals read back as the same double and always contain
/// a "." or an "e"; infinities and NaN become null. Dates become ISO 8601 strings in UTC, or null
/// if the C library cannot represent the year. Data become Base64 strings.
std::string jsonText(const platform::PropertyList& value);

} // namespace apps
