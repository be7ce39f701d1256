#pragma once

#include "platform/posix/Descriptor.h"
#include "platform/posix/SystemCalls.h"

#include <optional>
#include <string>
#include <sys/stat.h>
#include <vector>

/// Open folders and their entries. Entries are named relative to their folder; those that are
/// symbolic links are not followed, so that a walk through a tree never leaves it.
namespace platform::posix {

/// Opens the folder at @p path, following symbolic links. Returns an empty descriptor on failure.
Descriptor openFolder(const std::string& path, SystemCalls& calls = systemCalls());

/// Opens the folder @p name in @p folder. Returns an empty descriptor on failure, for example
/// if the entry is a symbolic link or not a folder.
Descriptor openFolder(int folder, const std::string& name);

/// Returns the names of all entries except "." and "..", or std::nullopt if reading fails.
std::optional<std::vector<std::string>> namesIn(int folder);

/// Returns the attributes of the entry @p name, or std::nullopt, with errno set, on failure.
std::optional<struct stat> statusOf(int folder, const std::string& name);

/// Returns whether @p name can name an entry: false for an empty string, "/", "." and "..".
bool isEntryName(const std::string& name);

bool isSameFile(const struct stat& one, const struct stat& other);

/// Flushes @p folder to disk after @p path has been created in it. A failure is only logged,
/// because @p path already exists.
void flushFolderOrLog(int folder, const std::string& path, SystemCalls& calls);

} // namespace platform::posix
