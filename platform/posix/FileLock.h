#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/posix/Descriptor.h"

#include <string>

namespace platform::posix {

/// Excludes other processes, and other objects in this one, that lock the same file. A process that
/// locks repeatedly lets a waiting one go first.
class FileLock : NonCopyable {
  public:
    /// Creates the file at @p path if necessary and waits for the lock, at most one second.
    explicit FileLock(const std::string& path);

    /// Returns 0 if this object holds the lock, otherwise an error number: EAGAIN after the second.
    int error() const { return error_; }

  private:
    Descriptor file_; // closing it releases the lock
    int error_ = 0;
};

} // namespace platform::posix
