#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/posix/Descriptor.h"

#include <chrono>
#include <string>

namespace platform::posix {

/// Excludes other processes, and other objects in this one, that lock the same file. A process that
/// locks repeatedly lets a waiting one go first.
class FileLock : NonCopyable {
  public:
    /// Creates the file at @p path if necessary and waits for the lock, at most for @p patience.
    explicit FileLock(const std::string& path,
                      std::chrono::milliseconds patience = std::chrono::seconds(1));

    /// Returns 0 if this object holds the lock, otherwise an error number: EAGAIN or EACCES if
    /// another one still held it.
    int error() const { return error_; }

  private:
    Descriptor file_; // closing it releases the lock
    int error_ = 0;
};

} // namespace platform::posix
