#include "platform/posix/AtomicFile.h"

#include "platform/posix/CopyFile.h"
#include "platform/posix/Folder.h"
#include "platform/posix/SymbolicLinks.h"
#include "platform/posix/TemporaryEntry.h"

#include <cerrno>

namespace platform::posix {

bool writeFileAtomically(const std::string& path, std::string_view bytes, SystemCalls& calls) {
    const auto target = finalTarget(path);
    if (!target)
        return false;
    const auto nameStart = target->rfind('/') + 1;
    const std::string name = target->substr(nameStart);
    // The dot also stands for the folder of a path without slashes.
    const Descriptor folder = openFolder(target->substr(0, nameStart) + '.', calls);
    if (name.empty() || !folder)
        return false;
    const auto old = statusOf(folder.get(), name);
    if (old ? !S_ISREG(old->st_mode) : errno != ENOENT)
        return false;

    using Entry = TemporaryEntry;
    Entry file(Entry::Kind::File, folder.get(), name, old ? 0600 : 0666, calls);
    if (!file || (old && !copyOwnerAndMode(file.get(), *old, calls)) ||
        !writeAll(file.get(), bytes, calls) || calls.flush(file.get()) != 0 ||
        !file.rename(Entry::IfTaken::Replace))
        return false;
    flushFolderOrLog(folder.get(), path, calls);
    return true;
}

} // namespace platform::posix
