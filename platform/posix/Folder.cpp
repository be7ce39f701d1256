#include "platform/posix/Folder.h"

#include "platform/Log.h"

#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string_view>

namespace platform::posix {

Descriptor openFolder(const std::string& path, SystemCalls& calls) {
    return Descriptor(calls.open(path, O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0));
}

Descriptor openFolder(int folder, const std::string& name) {
    return Descriptor(
        ::openat(folder, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

std::optional<std::vector<std::string>> namesIn(int folder) {
    Descriptor listing(::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(::fdopendir(listing.get()), ::closedir);
    if (!entries)
        return std::nullopt;
    listing.release();
    std::vector<std::string> names;
    errno = 0;
    while (const dirent* entry = ::readdir(entries.get())) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..")
            names.emplace_back(name);
    }
    return errno == 0 ? std::optional(std::move(names)) : std::nullopt;
}

std::optional<struct stat> statusOf(int folder, const std::string& name) {
    struct stat status {};
    if (::fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0)
        return std::nullopt;
    return status;
}

bool isEntryName(const std::string& name) {
    return !name.empty() && name != "/" && name != "." && name != "..";
}

bool isSameFile(const struct stat& one, const struct stat& other) {
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

void flushFolderOrLog(int folder, const std::string& path, SystemCalls& calls) {
    if (calls.flush(folder) != 0)
        logLine("cannot flush the folder of %@ to disk: %@", path, std::strerror(errno));
}

} // namespace platform::posix
