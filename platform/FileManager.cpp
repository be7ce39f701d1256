#include "platform/FileManager.h"

#include "platform/Defaults.h"
#include "platform/Operation.h"
#include "platform/base/PathStrings.h"
#include "platform/base/ServiceSlot.h"

#include <algorithm>

namespace platform {
namespace {

constinit ServiceSlot<FileManager> slot{"FileManager", defaults::fileManager};

constexpr std::size_t kPieceBytes = std::size_t{1} << 16;

/// Appends the paths below @p folder/@p relative, relative to @p folder. Returns whether the folder
/// could be read.
bool appendSubpaths(const FileManager& files, const std::string& folder,
                    const std::string& relative, std::vector<std::string>& result) {
    const auto names = files.contentsOfDirectory(appendingPathComponent(folder, relative));
    if (!names)
        return false;
    for (const std::string& name : *names) {
        const std::string below = appendingPathComponent(relative, name);
        const std::string path = appendingPathComponent(folder, below);
        result.push_back(below);
        if (files.isDirectory(path) && !files.isSymbolicLink(path))
            appendSubpaths(files, folder, below, result);
    }
    return true;
}

ReadFileResult readWholeFile(const FileManager& files, const std::string& path,
                             std::uint64_t maximumBytes) {
    const OpenFileResult opened = files.openFile(path);
    if (!opened)
        return {std::nullopt, opened.reason};
    const std::string tooLarge =
        "The file is larger than " + std::to_string(maximumBytes) + " bytes.";
    const std::uint64_t size = opened.file->size();
    if (size > maximumBytes)
        return {std::nullopt, tooLarge};

    // The file may grow while it is read, and some files report a size of 0.
    std::string contents;
    std::size_t length = 0;
    for (auto room = static_cast<std::size_t>(size) + 1;; room = length + kPieceBytes) {
        contents.resize(std::max(room, length + 1));
        const auto count = opened.file->read(contents.data() + length, contents.size() - length);
        if (!count)
            return {std::nullopt, "The file could not be read completely."};
        length += *count;
        if (length > maximumBytes)
            return {std::nullopt, tooLarge};
        if (*count == 0)
            break;
    }
    contents.resize(length);
    return {std::move(contents), {}};
}

} // namespace

InputFile::~InputFile() = default;

HeldFileLock::~HeldFileLock() = default;
FileManager::~FileManager() = default;

bool FileManager::isDirectory(const std::string& path) const {
    bool isDirectory = false;
    return fileExists(path, &isDirectory) && isDirectory;
}

bool FileManager::isFile(const std::string& path) const {
    bool isDirectory = false;
    return fileExists(path, &isDirectory) && !isDirectory;
}

ReadFileResult FileManager::readFile(const std::string& path, std::uint64_t maximumBytes) const {
    return guardedOperation([&] { return readWholeFile(*this, path, maximumBytes); },
                            ReadFileResult{std::nullopt, "out of memory"});
}

std::optional<std::vector<std::string>> FileManager::subpaths(const std::string& path) const {
    return guardedOperation([&]() -> std::optional<std::vector<std::string>> {
        std::vector<std::string> result;
        if (!appendSubpaths(*this, path, {}, result))
            return std::nullopt;
        return result;
    });
}

FileManager& fileManager() {
    return slot.get();
}

template <>
FileManager* exchangeService<FileManager>(FileManager* service) {
    return slot.exchange(service);
}

std::string expandingTildeInPath(std::string_view path) {
    return guardedOperation([&] {
        if (!path.starts_with('~'))
            return std::string(path);
        const std::string_view user = path.substr(1, path.find('/') - 1);
        const std::optional<std::string> home =
            user.empty() ? fileManager().homeDirectory()
                         : fileManager().homeDirectoryForUser(std::string(user));
        return home ? appendingPathComponent(*home, path.substr(1 + user.size()))
                    : std::string(path);
    });
}

} // namespace platform
