#pragma once

#include "platform/base/NonCopyable.h"

#include <string>

namespace apps {

/// Excludes other processes that lock the same file, for as long as the object exists.
class FileLock : platform::NonCopyable {
  public:
    /// Creates the file at @p path if necessary and waits until no other process has locked it.
    /// After one second, or if the file cannot be locked, logs that and continues without the lock.
    explicit FileLock(const std::string& path);
    ~FileLock();

  private:
    int file_ = -1;
};

} // namespace apps
