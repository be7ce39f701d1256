#pragma once

#include "platform/values/PropertyList.h"

#include <string>

namespace apps {

/// @p value as JSON, indented by two spaces, with a line feed at its end; always valid UTF-8, for
/// what is none in a string becomes U+FFFD. Dictionaries keep their order. Integers are exact over
/// the whole of their range; reals read back as the same double and always have a "." or an "e",
/// but infinities and NaN are null. Dates are ISO 8601 strings in UTC, data are base 64 strings.
std::string jsonText(const platform::PropertyList& value);

} // namespace apps
