#include "platform/TrustedFile.h"

#include "platform/base/PathStrings.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/PrivateGroup.h"
#include "platform/posix/SymbolicLinks.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <optional>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <utility>

namespace platform {
namespace {

using posix::Descriptor;

/// Returns the number that root has in this process's user namespace: 0, or if the namespace does
/// not include root, the overflow user, which its files then appear to belong to.
uid_t rootUser() {
    std::ifstream map("/proc/self/uid_map");
    std::ifstream overflow("/proc/sys/kernel/overflowuid");
    uid_t inside = 0;
    uid_t outside = 0;
    uid_t count = 0;
    bool isIncluded = !map;
    while (map >> inside >> outside >> count)
        isIncluded = isIncluded || outside == 0;
    uid_t number = 0;
    return isIncluded || !(overflow >> number) ? 0 : number;
}

bool isRoot(uid_t user) {
    static const uid_t root = rootUser();
    return user == 0 || user == root;
}

std::string pathOf(const Descriptor& file) {
    return "/proc/self/fd/" + std::to_string(file.get());
}

/// @p status is that of @p file. The group bits of a file with an access control list are those of
/// all users and groups in the list.
bool isWritableByOthers(const Descriptor& file, const struct stat& status) {
    if (S_ISDIR(status.st_mode) && (status.st_mode & S_ISVTX) != 0 && isRoot(status.st_uid))
        return false;
    if ((status.st_mode & S_IWOTH) != 0)
        return true;
    if ((status.st_mode & S_IWGRP) == 0)
        return false;
    const std::string path = pathOf(file);
    const bool hasList = ::getxattr(path.c_str(), "system.posix_acl_access", nullptr, 0) > 0;
    return hasList || (!posix::isPrivateGroup(status.st_gid, ::geteuid()) &&
                       !posix::isPrivateGroup(status.st_gid, 0));
}

/// Returns why @p file is not trusted, for a text that begins with its path, or an empty string.
std::string errorOf(const Descriptor& file) {
    struct stat status {};
    if (!file || ::fstat(file.get(), &status) != 0)
        return errno == ENOENT ? "is missing" : std::string("cannot be opened: ") + strerror(errno);
    if (S_ISLNK(status.st_mode))
        return "is a symbolic link";
    if (status.st_uid != ::geteuid() && !isRoot(status.st_uid))
        return "belongs to another user";
    if (isWritableByOthers(file, status))
        return "is writable by other users";
    return {};
}

bool isRegularFile(const Descriptor& file) {
    struct stat status {};
    return ::fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode);
}

} // namespace

std::shared_ptr<const TrustedFile> TrustedFile::open(const std::string& path, std::string& reason) {
    // O_PATH opens neither devices nor pipes, and needs no permission to read the folders.
    constexpr int kFlags = O_PATH | O_NOFOLLOW | O_CLOEXEC;
    Descriptor file(::open("/", kFlags));
    std::string error = errorOf(file);
    posix::PathWalk walk(path);
    while (error.empty()) {
        auto next = walk.next();
        if (!next)
            break;
        file = Descriptor(::openat(file.get(), lastPathComponent(*next).c_str(), kFlags));
        error = errorOf(file);
        walk.enter(std::move(*next));
    }
    if (error.empty() && !isRegularFile(file))
        error = "is not a regular file";
    if (error.empty()) {
        const int readable = ::open(pathOf(file).c_str(), O_RDONLY | O_CLOEXEC);
        if (readable >= 0)
            return std::make_shared<const TrustedFile>(path, readable);
        error = std::string("cannot be opened: ") + std::strerror(errno);
    }
    reason = walk.folder() + ' ' + error;
    return nullptr;
}

TrustedFile::TrustedFile(std::string path, int descriptor)
    : path_(std::move(path)), descriptor_(descriptor) {}

TrustedFile::~TrustedFile() {
    ::close(descriptor_);
}

} // namespace platform
