#pragma once

#include "platform/PropertyListService.h"

namespace platform::expat {

/// Reads @p source to its end as one XML property list in UTF-8, UTF-16, ISO-8859-1 or US-ASCII.
/// Besides malformed XML, rejects declarations of entities and attributes, references to entities
/// that XML does not predefine, anything but one value in one <plist>, nesting beyond
/// PropertyListService::kMaximumDepth, and single tags or comments of more than 1 MiB.
PropertyListResult readXml(const PropertyListService::ByteSource& source);

} // namespace platform::expat
