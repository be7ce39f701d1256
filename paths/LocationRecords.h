#pragma once

#include "platform/values/PropertyList.h"

#include <cstddef>

namespace paths {

// Merges and splits lists of world-clock location records. Both operations take time linear in the
// number of records. Lists passed with std::move are not copied. Lists may hold any values: a
// record that is not an array is kept unchanged, and a record with fewer than five elements is
// never a duplicate.

struct MergedRecords {
    platform::PropertyList::Array records;
    std::size_t duplicates = 0; ///< number of cached records that were already in the list
};

/// Appends to @p list those records of @p cached whose locations it does not contain. Keeps their
/// order. An appended array is padded with "" to 13 elements if it is shorter, and its element 13
/// is set to true. Cached records are not compared with each other.
///
/// Two locations are the same if their elements 0 to 4 are equal. Numbers and booleans are compared
/// by value (true, 1 and 1.0 are equal), strings by their bytes. A string never equals a number.
MergedRecords mergeRecords(platform::PropertyList::Array list,
                           platform::PropertyList::Array cached);

struct SplitRecords {
    platform::PropertyList::Array own;
    platform::PropertyList::Array net; ///< records with more than 13 elements
};

/// Splits a list into the user's own records and the net records. Preserves their order.
SplitRecords splitRecords(platform::PropertyList::Array list);

} // namespace paths
