#pragma once

#include "paths/WorldLocation.h"
#include "platform/values/PropertyList.h"

#include <string>
#include <vector>

/// Changes of the user's location list. Each operation reads the list from its files, changes one
/// record and writes it, so that changes by other programs are kept. Main thread only.
namespace extras::locations {

/// Returns the path of the location file, which may not exist.
std::string locationFile();
/// Returns whether there is a location file, also at one of its former paths.
bool hasFile();
/// Returns why the location file exists but cannot be read, or an empty text.
std::string fileError();
/// Returns the records that the user has chosen; see WorldClocks::list. Includes those that are not
/// locations.
platform::PropertyList::Array chosenRecords();

/// Returns the locations that the product knows, sorted by name. Empty without the preference pane.
std::vector<paths::WorldLocation> knownLocations();

// These return false if there is no such record, if the location file exists but cannot be read, or
// if it cannot be written (logged).

/// Appends a record, unless the list contains its location.
bool add(const paths::WorldLocation& location);
/// Removes the first record that equals @p location.
bool remove(const paths::WorldLocation& location);
/// Replaces the first record that equals @p before.
bool replace(const paths::WorldLocation& before, const paths::WorldLocation& after);

} // namespace extras::locations
