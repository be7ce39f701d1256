#include "platform/posix/Trash.h"

#include "platform/FileManager.h"
#include "platform/base/PathStrings.h"
#include "platform/posix/CopyBytes.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/Folder.h"
#include "platform/posix/SystemCalls.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <limits.h>
#include <memory>
#include <string_view>

namespace platform::posix {
namespace {

constexpr std::string_view kInfoEnding = ".trashinfo";
constexpr int kMaximumNumber = 10'000;

/// A Trash, and the folder that its notes tell paths from; empty: they tell absolute paths.
struct Trash {
    std::string folder;
    std::string top;
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

/// A folder that the current user alone has, made when it is missing.
bool isOwnFolder(const std::string& path) {
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

/// The path with the links in the folders above the last component resolved.
std::optional<std::string> realPlace(const std::string& path) {
    const std::unique_ptr<char, void (*)(void*)> folder(
        ::realpath(deletingLastPathComponent(path).c_str(), nullptr), std::free);
    const std::string name = lastPathComponent(path);
    if (!folder || name.empty() || name == "/" || name == "." || name == "..")
        return std::nullopt;
    return appendingPathComponent(folder.get(), name);
}

std::string topOf(const std::string& path, dev_t device) {
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
    const std::string top = topOf(path, item->st_dev);
    auto folder = trashAtTop(top);
    return folder ? std::optional(Trash{std::move(*folder), top}) : std::nullopt;
}

std::string noteFor(const std::string& path, const std::string& top) {
    std::string_view told = path;
    if (!top.empty())
        told.remove_prefix(top == "/" ? 1 : top.size() + 1);
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&now, &local);
    std::array<char, 32> date{};
    std::strftime(date.data(), date.size(), "%Y-%m-%dT%H:%M:%S", &local);
    return "[Trash Info]\nPath=" + percentEncodedPath(told) + "\nDeletionDate=" + date.data() +
           '\n';
}

/// @p text cut to at most @p size bytes, but not within a character.
std::string_view shortened(std::string_view text, std::size_t size) {
    if (text.size() <= size)
        return text;
    while (size > 0 && (static_cast<unsigned char>(text[size]) & 0xC0U) == 0x80U)
        --size;
    return text.substr(0, size);
}

/// "Clock.menu", "Clock.2.menu", "Clock.3.menu"; short enough for a note's name.
std::string numbered(const std::string& name, int number) {
    const std::string type = pathExtension(name);
    std::string ending = type.empty() ? "" : '.' + type;
    std::string_view stem(name);
    stem.remove_suffix(ending.size());
    if (number > 1)
        ending = '.' + std::to_string(number) + ending;
    const std::size_t room = NAME_MAX - kInfoEnding.size();
    if (ending.size() >= room)
        return std::string(shortened(stem, room - 8)) + '.' + std::to_string(number);
    return std::string(shortened(stem, room - ending.size())) + ending;
}

enum class Outcome { Done, NameTaken, Failed };

/// The note comes first: what lies in "files" without one is nobody's.
Outcome moveAs(const std::string& name, const std::string& path, const Descriptor& files,
               const Descriptor& info, const std::string& note) {
    SystemCalls& calls = systemCalls();
    const std::string noteName = name + std::string(kInfoEnding);
    const Descriptor file(
        calls.openAt(info.get(), noteName, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (!file)
        return errno == EEXIST ? Outcome::NameTaken : Outcome::Failed;
    if (writeAll(file.get(), note, calls) && calls.flush(file.get()) == 0 &&
        calls.renameWithoutReplacing(AT_FDCWD, path, files.get(), name) == 0)
        return Outcome::Done;
    const Outcome outcome =
        errno == EEXIST || errno == ENOTEMPTY ? Outcome::NameTaken : Outcome::Failed;
    ::unlinkat(info.get(), noteName.c_str(), 0);
    return outcome;
}

} // namespace

std::optional<std::string> trashAtTop(const std::string& top) {
    const std::string user = std::to_string(::geteuid());
    const std::string everybodys = appendingPathComponent(top, ".Trash");
    const auto status = statusAt(everybodys);
    if (status && S_ISDIR(status->st_mode) && (status->st_mode & S_ISVTX) != 0) {
        std::string folder = appendingPathComponent(everybodys, user);
        if (isOwnFolder(folder))
            return folder;
    }
    std::string folder = appendingPathComponent(top, ".Trash-" + user);
    return isOwnFolder(folder) ? std::optional(std::move(folder)) : std::nullopt;
}

bool moveToTrash(const std::string& path) {
    const auto place = realPlace(path);
    const auto trash = place ? trashFor(*place) : std::nullopt;
    if (!trash || !makeFolders(appendingPathComponent(trash->folder, "files")) ||
        !makeFolders(appendingPathComponent(trash->folder, "info")))
        return false;
    const Descriptor folder(::open(trash->folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const Descriptor files = openFolder(folder.get(), "files");
    const Descriptor info = openFolder(folder.get(), "info");
    if (!files || !info)
        return false;
    const std::string note = noteFor(*place, trash->top);
    Outcome outcome = Outcome::NameTaken;
    for (int number = 1; outcome == Outcome::NameTaken && number <= kMaximumNumber; ++number)
        outcome = moveAs(numbered(lastPathComponent(*place), number), *place, files, info, note);
    return outcome == Outcome::Done;
}

} // namespace platform::posix
