#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/SystemCalls.h"

#include <string>
#include <string_view>

namespace platform::posix {

/// A file or folder under a temporary name (temporaryPrefix), beside the place of the finished one.
/// It is locked with flock as long as the object lives. Destroying the object removes it, with
/// everything in it, unless it has been renamed.
///
/// Creating an entry first removes the unlocked ones for the same purpose and final name: they
/// belong to processes that have died.
class TemporaryEntry : NonCopyable {
  public:
    enum class Kind { File, Folder };
    enum class IfTaken { Replace, Fail };

    /// Creates an entry in @p folder with @p mode less the process's mask. @p folder must stay
    /// open, and @p calls exist, as long as the object lives. If this fails the object is false.
    TemporaryEntry(Kind kind, int folder, std::string_view purpose, std::string finalName,
                   mode_t mode, SystemCalls& calls);
    ~TemporaryEntry();

    explicit operator bool() const { return static_cast<bool>(descriptor_); }
    /// The open entry; a file is open for writing.
    int get() const { return descriptor_.get(); }
    /// Gives the entry its final name. Returns false if it still has the temporary one.
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
