#include "platform/posix/MoveFile.h"

#include "platform/base/PathStrings.h"
#include "platform/posix/CopyFile.h"
#include "platform/posix/Folder.h"
#include "platform/posix/RemoveTree.h"
#include "platform/posix/SymbolicLinks.h"
#include "platform/posix/TemporaryEntry.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace platform::posix {
namespace {

/// Reads until @p buffer is full or the file ends. Returns the number of bytes, or -1 on failure.
template <std::size_t Size>
ssize_t readAll(int file, std::array<char, Size>& buffer) {
    std::size_t length = 0;
    while (length < Size) {
        const ssize_t count =
            retryInterrupted([&] { return ::read(file, buffer.data() + length, Size - length); });
        if (count < 0)
            return -1;
        if (count == 0)
            break;
        length += static_cast<std::size_t>(count);
    }
    return static_cast<ssize_t>(length);
}

bool copyFile(const std::string& from, const std::string& to) {
    SystemCalls& calls = systemCalls();
    const std::string name = lastPathComponent(to);
    struct stat status {};
    const Descriptor source = openRegularFile(AT_FDCWD, from, status);
    const Descriptor folder = openFolder(deletingLastPathComponent(to));
    if (!source || !folder || !isEntryName(name))
        return false;
    using Entry = TemporaryEntry;
    Entry copy(Entry::Kind::File, folder.get(), name, 0600, calls);
    if (!copy || !copyBytes(source.get(), copy.get(), calls) ||
        !copyOwnerAndMode(copy.get(), status, calls) || !copyTimes(copy.get(), status) ||
        calls.flush(copy.get()) != 0 || !copy.rename(Entry::IfTaken::Fail))
        return false;
    if (calls.flush(folder.get()) == 0)
        return true;
    ::unlinkat(folder.get(), name.c_str(), 0);
    return false;
}

bool haveSameBytes(int one, int other) {
    std::array<char, 1 << 14> first{};
    std::array<char, 1 << 14> second{};
    for (;;) {
        const ssize_t count = readAll(one, first);
        if (count < 0 || readAll(other, second) != count ||
            !std::equal(first.begin(), first.begin() + count, second.begin()))
            return false;
        if (count == 0)
            return true;
    }
}

/// Returns whether @p to is a copy of @p from that copyFile, or the copying of a link, has made.
bool isCopy(const std::string& from, const std::string& to) {
    if (const auto target = linkTarget(from))
        return target == linkTarget(to);
    struct stat one {};
    struct stat other {};
    const Descriptor source = openRegularFile(AT_FDCWD, from, one);
    const Descriptor copy = openRegularFile(AT_FDCWD, to, other);
    return source && copy && !isSameFile(one, other) && one.st_size == other.st_size &&
           one.st_mtim.tv_sec == other.st_mtim.tv_sec &&
           one.st_mtim.tv_nsec == other.st_mtim.tv_nsec && haveSameBytes(source.get(), copy.get());
}

} // namespace

bool moveFile(const std::string& from, const std::string& to) {
    if (const Descriptor folder = openFolder(deletingLastPathComponent(to)))
        removeLeftovers(folder.get(), lastPathComponent(to));
    if (systemCalls().renameWithoutReplacing(AT_FDCWD, from, AT_FDCWD, to) == 0)
        return true;
    if (errno != EXDEV)
        return false;
    // A process that was killed after it had made the copy has left both.
    if (isCopy(from, to))
        return ::unlink(from.c_str()) == 0;
    const auto target = linkTarget(from);
    const bool copied = target ? ::symlink(target->c_str(), to.c_str()) == 0 : copyFile(from, to);
    if (!copied)
        return false;
    if (::unlink(from.c_str()) == 0)
        return true;
    ::unlink(to.c_str());
    return false;
}

} // namespace platform::posix
