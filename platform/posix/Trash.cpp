#include "platform/posix/Trash.h"

#include "platform/FileManager.h"
#include "platform/base/PathStrings.h"
#include "platform/posix/CopyFile.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/Folder.h"
#include "platform/posix/SymbolicLinks.h"
#include "platform/posix/SystemCalls.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <limits.h>
#include <string_view>

namespace platform::posix {
namespace {

constexpr std::string_view kInfoExtension = ".trashinfo";
constexpr int kMaximumNumber = 10'000;

struct Trash {
    std::string folder;
    std::string top; ///< the folder that original paths are relative to; empty for absolute paths
};

std::optional<struct stat> statusAt(const std::string& path) {
    return statusOf(AT_FDCWD, path);
}

bool makeFolders(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) == 0)
        return S_ISDIR(status.st_mode);
    const std::string parent = deletingLastPathComponent(path);
    return parent != path && makeFolders(parent) &&
           (::mkdir(path.c_str(), 0700) == 0 || errno == EEXIST);
}

/// Creates the folder if it is missing. Returns whether it belongs to the current user.
bool ensureOwnFolder(const std::string& path) {
    if (::mkdir(path.c_str(), 0700) != 0 && errno != EEXIST)
        return false;
    const auto status = statusAt(path);
    return status && S_ISDIR(status->st_mode) && status->st_uid == ::geteuid();
}

std::string homeTrash() {
    const char* data = std::getenv("XDG_DATA_HOME");
    return appendingPathComponent(
        data && *data == '/' ? std::string(data) : expandingTildeInPath("~/.local/share"), "Trash");
}

/// Resolves the symbolic links in all components of @p path but the last.
std::optional<std::string> resolvingParent(const std::string& path) {
    const auto folder = realPath(deletingLastPathComponent(path));
    const std::string name = lastPathComponent(path);
    if (!folder || !isEntryName(name))
        return std::nullopt;
    return appendingPathComponent(*folder, name);
}

/// Returns the top folder of the file system that @p path is on.
std::string topFolder(const std::string& path, dev_t device) {
    std::string top = path;
    while (top != "/") {
        std::string above = deletingLastPathComponent(top);
        const auto status = statusAt(above);
        if (!status || status->st_dev != device)
            break;
        top = std::move(above);
    }
    return top;
}

std::optional<Trash> trashFor(const std::string& path) {
    const auto item = statusAt(path);
    if (!item)
        return std::nullopt;
    const std::string home = homeTrash();
    struct stat status {};
    if (makeFolders(home) && ::stat(home.c_str(), &status) == 0 && status.st_dev == item->st_dev)
        return Trash{home, {}};
    const std::string top = topFolder(path, item->st_dev);
    auto folder = trashAtTop(top);
    return folder ? std::optional(Trash{std::move(*folder), top}) : std::nullopt;
}

std::string trashInfo(const std::string& path, const std::string& top) {
    std::string_view relative = path;
    if (!top.empty())
        relative.remove_prefix(top == "/" ? 1 : top.size() + 1);
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&now, &local);
    std::array<char, 32> date{};
    std::strftime(date.data(), date.size(), "%Y-%m-%dT%H:%M:%S", &local);
    return "[Trash Info]\nPath=" + percentEncodedPath(relative) + "\nDeletionDate=" + date.data() +
           '\n';
}

/// Truncates UTF-8 text to at most @p size bytes.
std::string_view truncated(std::string_view text, std::size_t size) {
    if (text.size() <= size)
        return text;
    while (size > 0 && (static_cast<unsigned char>(text[size]) & 0xC0U) == 0x80U)
        --size;
    return text.substr(0, size);
}

/// Returns "Clock.menu", "Clock.2.menu" and so on, short enough for kInfoExtension to be appended.
std::string numbered(const std::string& name, int number) {
    const std::string type = pathExtension(name);
    std::string suffix = type.empty() ? "" : '.' + type;
    std::string_view stem(name);
    stem.remove_suffix(suffix.size());
    if (number > 1)
        suffix = '.' + std::to_string(number) + suffix;
    const std::size_t room = NAME_MAX - kInfoExtension.size();
    if (suffix.size() >= room)
        return std::string(truncated(stem, room - 8)) + '.' + std::to_string(number);
    return std::string(truncated(stem, room - suffix.size())) + suffix;
}

enum class Outcome { Moved, NameTaken, Failed };

/// Writes the information before moving the item, so that no item is ever without it.
Outcome moveAs(const std::string& name, const std::string& path, const Descriptor& files,
               const Descriptor& info, const std::string& text) {
    SystemCalls& calls = systemCalls();
    const std::string infoName = name + std::string(kInfoExtension);
    const Descriptor file(
        calls.openAt(info.get(), infoName, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (!file)
        return errno == EEXIST ? Outcome::NameTaken : Outcome::Failed;
    if (writeAll(file.get(), text, calls) && calls.flush(file.get()) == 0 &&
        calls.renameWithoutReplacing(AT_FDCWD, path, files.get(), name) == 0)
        return Outcome::Moved;
    const Outcome outcome =
        errno == EEXIST || errno == ENOTEMPTY ? Outcome::NameTaken : Outcome::Failed;
    ::unlinkat(info.get(), infoName.c_str(), 0);
    return outcome;
}

} // namespace

std::optional<std::string> trashAtTop(const std::string& top) {
    const std::string user = std::to_string(::geteuid());
    const std::string shared = appendingPathComponent(top, ".Trash");
    const auto status = statusAt(shared);
    if (status && S_ISDIR(status->st_mode) && (status->st_mode & S_ISVTX) != 0) {
        std::string folder = appendingPathComponent(shared, user);
        if (ensureOwnFolder(folder))
            return folder;
    }
    std::string folder = appendingPathComponent(top, ".Trash-" + user);
    return ensureOwnFolder(folder) ? std::optional(std::move(folder)) : std::nullopt;
}

bool moveToTrash(const std::string& path) {
    const auto resolved = resolvingParent(path);
    const auto trash = resolved ? trashFor(*resolved) : std::nullopt;
    if (!trash || !makeFolders(appendingPathComponent(trash->folder, "files")) ||
        !makeFolders(appendingPathComponent(trash->folder, "info")))
        return false;
    const Descriptor folder = openFolder(trash->folder);
    const Descriptor files = openFolder(folder.get(), "files");
    const Descriptor info = openFolder(folder.get(), "info");
    if (!files || !info)
        return false;
    const std::string text = trashInfo(*resolved, trash->top);
    Outcome outcome = Outcome::NameTaken;
    for (int number = 1; outcome == Outcome::NameTaken && number <= kMaximumNumber; ++number)
        outcome =
            moveAs(numbered(lastPathComponent(*resolved), number), *resolved, files, info, text);
    return outcome == Outcome::Moved;
}

} // namespace platform::posix
