#include "platform/posix/TemporaryEntry.h"

#include "platform/posix/Folder.h"
#include "platform/posix/RemoveTree.h"
#include "platform/posix/TemporaryName.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <utility>

namespace platform::posix {
namespace {

constexpr int kMaximumAttempts = 16;

Descriptor create(TemporaryEntry::Kind kind, int folder, const std::string& name, mode_t mode,
                  SystemCalls& calls) {
    if (kind == TemporaryEntry::Kind::File)
        return Descriptor(
            calls.openAt(folder, name, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode));
    return calls.makeFolder(folder, name, mode) == 0 ? openFolder(folder, name) : Descriptor();
}

/// Locks a new entry. Returns false if another process has already locked or removed it as a
/// leftover. On a file system without locks, no process removes leftovers.
bool lock(int entry, int folder, const std::string& name) {
    if (::flock(entry, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
        return false;
    struct stat created {};
    const auto found = statusOf(folder, name);
    return found && ::fstat(entry, &created) == 0 && isSameFile(*found, created);
}

} // namespace

TemporaryEntry::TemporaryEntry(Kind kind, int folder, std::string finalName, mode_t mode,
                               SystemCalls& calls)
    : folder_(folder), finalName_(std::move(finalName)), calls_(calls) {
    removeLeftovers(folder, finalName_);
    for (int attempt = 0; attempt < kMaximumAttempts; ++attempt) {
        auto name = temporaryName(temporaryPrefix(finalName_));
        if (!name)
            return;
        Descriptor entry = create(kind, folder, *name, mode, calls);
        if (!entry && errno != EEXIST && errno != ENOENT)
            return;
        if (!entry || !lock(entry.get(), folder, *name))
            continue;
        name_ = std::move(*name); // unlike a copy, cannot fail
        descriptor_ = std::move(entry);
        return;
    }
}

TemporaryEntry::~TemporaryEntry() {
    if (descriptor_ && !renamed_)
        removeTemporaryTree(folder_, name_);
}

bool TemporaryEntry::rename(IfTaken ifTaken) {
    const int result = ifTaken == IfTaken::Replace
                           ? calls_.rename(folder_, name_, finalName_)
                           : calls_.renameWithoutReplacing(folder_, name_, folder_, finalName_);
    renamed_ = result == 0;
    return renamed_;
}

} // namespace platform::posix
