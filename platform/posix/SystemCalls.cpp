#include "platform/posix/SystemCalls.h"

#include "platform/base/NeverDestroyed.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform::posix {

SystemCalls::~SystemCalls() = default;

int SystemCalls::open(const std::string& path, int flags, mode_t mode) {
    return retryInterrupted([&] { return ::open(path.c_str(), flags, mode); });
}

int SystemCalls::openAt(int folder, const std::string& name, int flags, mode_t mode) {
    return retryInterrupted([&] { return ::openat(folder, name.c_str(), flags, mode); });
}

ssize_t SystemCalls::write(int file, const char* bytes, std::size_t size) {
    return retryInterrupted([&] { return ::write(file, bytes, size); });
}

int SystemCalls::setMode(int file, mode_t mode) {
    return retryInterrupted([&] { return ::fchmod(file, mode); });
}

int SystemCalls::flush(int file) {
    return retryInterrupted([&] { return ::fsync(file); });
}

int SystemCalls::makeFolder(int folder, const std::string& name, mode_t mode) {
    return ::mkdirat(folder, name.c_str(), mode);
}

int SystemCalls::makeLink(const std::string& target, int folder, const std::string& name) {
    return ::symlinkat(target.c_str(), folder, name.c_str());
}

int SystemCalls::rename(int folder, const std::string& from, const std::string& to) {
    return ::renameat(folder, from.c_str(), folder, to.c_str());
}

int SystemCalls::renameWithoutReplacing(int fromFolder, const std::string& from, int toFolder,
                                        const std::string& to) {
    const int result =
        ::renameat2(fromFolder, from.c_str(), toFolder, to.c_str(), RENAME_NOREPLACE);
    if (result == 0 || (errno != EINVAL && errno != ENOSYS))
        return result;
    struct stat status {};
    if (::fstatat(toFolder, to.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0)
        errno = EEXIST;
    else if (errno == ENOENT)
        return ::renameat(fromFolder, from.c_str(), toFolder, to.c_str());
    return -1;
}

int SystemCalls::exchange(int oneFolder, int otherFolder, const std::string& name) {
    return ::renameat2(oneFolder, name.c_str(), otherFolder, name.c_str(), RENAME_EXCHANGE);
}

SystemCalls& systemCalls() {
    // Never destroyed: destructors of other static objects may log or write files.
    static NeverDestroyed<SystemCalls> calls;
    return calls.get();
}

} // namespace platform::posix
