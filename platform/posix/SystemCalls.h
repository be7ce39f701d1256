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

/// The system calls that change the disk, virtual so that tests can make them fail. Results and
/// errno are those of libc. Calls interrupted by a signal are repeated.
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
    /// Fails with EEXIST if @p to exists. On file systems without this operation the check and the
    /// renaming are two calls, and another process may create @p to in between.
    virtual int renameWithoutReplacing(int fromFolder, const std::string& from, int toFolder,
                                       const std::string& to);
    /// Exchanges two entries that have the same name. Fails on file systems without this operation.
    virtual int exchange(int oneFolder, int otherFolder, const std::string& name);
};

/// Returns the real system calls.
SystemCalls& systemCalls();

} // namespace platform::posix
