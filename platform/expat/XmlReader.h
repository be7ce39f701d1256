#pragma once

#include "platform/PropertyListService.h"

namespace platform::expat {

/// Reads one XML property list to the end of @p source. Faults are, beyond what XML forbids:
/// declarations of entities and attributes, references to entities that XML itself does not define,
/// anything but one value inside one <plist>, nesting beyond PropertyListService::kMaximumDepth and
/// single tags or comments of more than a mebibyte. Encodings: UTF-8, UTF-16, ISO-8859-1, US-ASCII.
PropertyListResult readXml(const PropertyListService::ByteSource& source);

} // namespace platform::expat
