#include "platform/posix/CopyFile.h"

#include <array>
#include <fcntl.h>
#include <unistd.h>
#include <vector>

namespace platform::posix {
namespace {

constexpr std::size_t kBufferBytes = std::size_t{1} << 16;

} // namespace

Descriptor openRegularFile(int folder, const std::string& name, struct stat& status) {
    Descriptor file(::openat(folder, name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    const bool isRegular = file && ::fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode);
    return isRegular ? std::move(file) : Descriptor();
}

bool writeAll(int file, std::string_view bytes, SystemCalls& calls) {
    while (!bytes.empty()) {
        const ssize_t count = calls.write(file, bytes.data(), bytes.size());
        if (count <= 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

bool copyBytes(int source, int target, SystemCalls& calls) {
    std::vector<char> buffer(kBufferBytes);
    for (;;) {
        const ssize_t count =
            retryInterrupted([&] { return ::read(source, buffer.data(), buffer.size()); });
        if (count == 0)
            return true;
        if (count < 0 || !writeAll(target, {buffer.data(), static_cast<std::size_t>(count)}, calls))
            return false;
    }
}

bool copyOwnerAndMode(int file, const struct stat& original, SystemCalls& calls) {
    struct stat status {};
    if (::fstat(file, &status) != 0)
        return false;
    const bool sameOwner = status.st_uid == original.st_uid && status.st_gid == original.st_gid;
    // Always true on a file system without owners and modes.
    if (sameOwner && status.st_mode == original.st_mode)
        return true;
    if (sameOwner || ::fchown(file, original.st_uid, original.st_gid) == 0)
        return calls.setMode(file, original.st_mode & 07777U) == 0;
    // A process that may not change the owner may still be permitted to change the group.
    [[maybe_unused]] const int ignored = ::fchown(file, static_cast<uid_t>(-1), original.st_gid);
    return calls.setMode(file, original.st_mode & 0777U) == 0;
}

bool copyTimes(int file, const struct stat& original) {
    const std::array<timespec, 2> times{original.st_atim, original.st_mtim};
    return ::futimens(file, times.data()) == 0;
}

} // namespace platform::posix
