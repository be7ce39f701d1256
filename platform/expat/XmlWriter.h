#pragma once

#include "platform/values/PropertyList.h"

#include <optional>
#include <string>

namespace platform::expat {

/// The value as a UTF-8 XML property list, indented with tabs; nothing when XML cannot hold it.
std::optional<std::string> writeXml(const PropertyList& value);
std::optional<std::string> writeXml(const PropertyList::Array& array);

} // namespace platform::expat
