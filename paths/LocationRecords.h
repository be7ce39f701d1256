#pragma once

#include "platform/values/PropertyList.h"

#include <cstddef>

/// How lists of world-clock locations are merged and split; no files. Both take time linear in the
/// number of records. What is moved in is not copied. Any values are taken: a record that is no
/// array is kept as it is, and one with fewer than five elements is no other's duplicate.

struct MergedRecords {
    platform::PropertyList::Array records;
    std::size_t duplicates = 0; ///< records of the cache that the list already had
};

/// @p list followed by those records of @p cached whose location it does not have, in their order;
/// each of these then has at least 14 elements, the number 13 being true and what was missing
/// before it "". Records of the cache are not compared with each other. Locations are the same when
/// their elements 0 to 4 are equal: numbers and booleans by value (true, 1 and 1.0 are equal),
/// strings by their bytes, and never a string with a number.
MergedRecords mergeRecords(platform::PropertyList::Array list,
                           platform::PropertyList::Array cached);

struct SplitRecords {
    platform::PropertyList::Array own;
    platform::PropertyList::Array net; ///< those with more than 13 elements
};

/// The user's own records and the net records, each in their order.
SplitRecords splitRecords(platform::PropertyList::Array list);
