#pragma once

#include "platform/base/NonCopyable.h"

#include <cerrno>
#include <cstddef>
#include <string>
#include <sys/types.h>

namespace platform::posix {

/// Repeats a system call as long as signals interrupt it. @p call returns a negative number and
/// sets errno on failure.
template <class Call>
auto retryInterrupted(Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

/// The system calls that write to the disk, so that tests can make them fail. They return what libc
/// returns, set errno, and are repeated if a signal interrupts them.
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
    /// Fails with EEXIST if @p to exists. Where the file system cannot check that itself, this is
    /// checked before the call, and another process may create @p to in between.
    virtual int renameWithoutReplacing(int fromFolder, const std::string& from, int toFolder,
                                       const std::string& to);
};

/// Returns the calls that are passed to the system.
SystemCalls& systemCalls();

} // namespace platform::posix
