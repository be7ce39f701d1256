#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/SystemCalls.h"

#include <string>

namespace platform::posix {

/// A new file or folder with a temporary name (see temporaryPrefix), in the same folder as its
/// final name. It is locked with flock. Destroying the object removes the entry, with everything in
/// it, unless it has been renamed. The constructor first calls removeLeftovers.
class TemporaryEntry : NonCopyable {
  public:
    enum class Kind { File, Folder };
    enum class IfTaken { Replace, Fail };

    /// Creates an entry in @p folder; the process's umask applies to @p mode. On failure the object
    /// converts to false. @p folder must stay open, and @p calls valid, for the object's lifetime.
    TemporaryEntry(Kind kind, int folder, std::string finalName, mode_t mode, SystemCalls& calls);
    ~TemporaryEntry();

    explicit operator bool() const { return static_cast<bool>(descriptor_); }
    /// Returns the descriptor of the entry. A file is open for writing.
    int get() const { return descriptor_.get(); }
    /// Renames the entry to its final name. Returns false on failure.
    bool rename(IfTaken ifTaken);

  private:
    int folder_;
    std::string finalName_;
    SystemCalls& calls_;
    std::string name_;
    Descriptor descriptor_;
    bool renamed_ = false;
};

} // namespace platform::posix
