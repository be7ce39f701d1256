#pragma once

#include "platform/PropertyList.h"

namespace platform::expat {

/// Reads one XML property list to the end of @p source. Declarations of entities and
/// attributes, references to entities
/// that XML itself does not define, anything but one value inside one <plist>, nesting beyond
/// PropertyListService::kMaximumDepth and single tags or comments of more than a mebibyte are
/// faults. Encodings: UTF-8, UTF-16, ISO-8859-1 and US-ASCII.
PropertyListResult readXml(const PropertyListService::ByteSource& source);

} // namespace platform::expat
