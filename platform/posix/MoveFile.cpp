#include "platform/posix/MoveFile.h"

#include "platform/base/PathStrings.h"
#include "platform/posix/CopyFile.h"
#include "platform/posix/Folder.h"
#include "platform/posix/SymbolicLinks.h"
#include "platform/posix/TemporaryEntry.h"

#include <cerrno>
#include <fcntl.h>

namespace platform::posix {
namespace {

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

} // namespace

bool moveFile(const std::string& from, const std::string& to) {
    if (systemCalls().renameWithoutReplacing(AT_FDCWD, from, AT_FDCWD, to) == 0)
        return true;
    if (errno != EXDEV)
        return false;
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
