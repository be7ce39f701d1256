#pragma once

#include "platform/base/NonCopyable.h"

#include <cstddef>
#include <string>
#include <sys/types.h>

namespace platform::posix {

/// The system calls that put a file on the disk and may fail while doing so: as libc has them,
/// errno included, and resumed when a signal interrupts them. A test makes them fail.
class SystemCalls : NonCopyable {
  public:
    virtual ~SystemCalls();

    virtual int open(const std::string& path, int flags, mode_t mode);
    virtual int openAt(int folder, const std::string& name, int flags, mode_t mode);
    virtual ssize_t write(int file, const char* bytes, std::size_t size);
    virtual int setMode(int file, mode_t mode);
    virtual int flush(int file);
    virtual int makeFolder(int folder, const std::string& name, mode_t mode);
    virtual int makeLink(const std::string& target, int folder, const std::string& name);
    virtual int rename(int folder, const std::string& from, const std::string& to);
    /// Fails with EEXIST when there is something at @p to. A file system that cannot refuse by
    /// itself is asked before.
    virtual int renameWithoutReplacing(int fromFolder, const std::string& from, int toFolder,
                                       const std::string& to);
};

/// The system's own.
SystemCalls& systemCalls();

} // namespace platform::posix
