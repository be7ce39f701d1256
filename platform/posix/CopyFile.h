#pragma once

#include "platform/posix/Descriptor.h"
#include "platform/posix/SystemCalls.h"

#include <string>
#include <string_view>
#include <sys/stat.h>

/// The contents and the attributes of open files. Every function returns false on failure.
namespace platform::posix {

/// Opens the regular file @p name in @p folder for reading and stores its attributes in @p status.
/// Returns an empty descriptor for anything else, a symbolic link included.
Descriptor openRegularFile(int folder, const std::string& name, struct stat& status);

/// Writes all of @p bytes, in as many calls as it takes.
bool writeAll(int file, std::string_view bytes, SystemCalls& calls);

/// Copies everything from the current position of @p source to its end.
bool copyBytes(int source, int target, SystemCalls& calls);

/// Gives @p file the owner, if the process is permitted to, and the mode in @p original. If the
/// owner cannot be set, the set-user, set-group and sticky bits are cleared.
bool copyOwnerAndMode(int file, const struct stat& original, SystemCalls& calls);

/// Gives @p file the access and modification times in @p original.
bool copyTimes(int file, const struct stat& original);

} // namespace platform::posix
