#pragma once

#include "platform/posix/Descriptor.h"
#include "platform/posix/SystemCalls.h"

#include <string>
#include <string_view>
#include <sys/stat.h>

/// The contents and the attributes of open files. Functions returning bool return false on failure.
namespace platform::posix {

/// Opens the regular file @p name in @p folder for reading and stores its attributes in @p status.
/// Returns an empty descriptor for anything else, including a symbolic link.
Descriptor openRegularFile(int folder, const std::string& name, struct stat& status);

/// Writes all of @p bytes, in as many calls as it takes.
bool writeAll(int file, std::string_view bytes, SystemCalls& calls);

/// Copies everything from the current position of @p source to its end.
bool copyBytes(int source, int target, SystemCalls& calls);

/// Sets the owner and the mode of @p file to those in @p original. If the process is not permitted
/// to set the owner, keeps it and clears the set-user, set-group and sticky bits.
bool copyOwnerAndMode(int file, const struct stat& original, SystemCalls& calls);

/// Sets the access and modification times of @p file to those in @p original.
bool copyTimes(int file, const struct stat& original);

} // namespace platform::posix
