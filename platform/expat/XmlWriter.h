#pragma once

#include "platform/values/PropertyList.h"

#include <optional>
#include <string>

namespace platform::expat {

/// Returns the value as a UTF-8 XML property list, indented with tabs, or std::nullopt if XML
/// cannot represent it.
std::optional<std::string> writeXml(const PropertyList& value);
std::optional<std::string> writeXml(const PropertyList::Array& array);

} // namespace platform::expat
