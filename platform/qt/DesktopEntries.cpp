#include "platform/qt/DesktopEntries.h"

#include <QStandardPaths>
#include <QString>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <sys/stat.h>

namespace platform::qt {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kExtension = ".desktop";
constexpr std::uintmax_t kMaximumSize = 1024 * 1024;
constexpr int kMaximumDepth = 4;

std::string environment(const char* name, const std::string& otherwise) {
    const char* const value = std::getenv(name);
    return value && *value ? value : otherwise;
}

std::vector<std::string> partsOf(const std::string& list, char separator) {
    std::vector<std::string> parts;
    for (std::size_t start = 0; start <= list.size();) {
        const std::size_t end = std::min(list.find(separator, start), list.size());
        if (end > start)
            parts.push_back(list.substr(start, end - start));
        start = end + 1;
    }
    return parts;
}

/// Returns the folders that may contain entries, the most important one first.
std::vector<fs::path> baseFolders() {
    std::string list = environment("XDG_DATA_HOME", environment("HOME", "") + "/.local/share");
    list += ':';
    list += environment("XDG_DATA_DIRS", "/usr/local/share:/usr/share");
    std::vector<fs::path> folders;
    for (const std::string& folder : partsOf(list, ':'))
        if (folder.starts_with('/'))
            folders.push_back(fs::path(folder) / "applications");
    return folders;
}

std::vector<std::string> userLocales() {
    return localesOf(environment("LC_ALL", environment("LC_MESSAGES", environment("LANG", "C"))));
}

std::string lowerCase(std::string text) {
    for (char& character : text)
        if (character >= 'A' && character <= 'Z')
            character = static_cast<char>(character - 'A' + 'a');
    return text;
}

/// Returns the file of an identifier, whose dashes may stand for subfolders.
fs::path findFile(const fs::path& folder, const std::string& identifier, int depth = 0) {
    std::error_code ignored;
    if (fs::exists(folder / identifier, ignored))
        return folder / identifier;
    if (depth == kMaximumDepth)
        return {};
    for (auto dash = identifier.find('-'); dash != std::string::npos;
         dash = identifier.find('-', dash + 1)) {
        const fs::path subfolder = folder / identifier.substr(0, dash);
        // "..-x" must not lead out of the folder.
        if (dash == 0 || identifier.starts_with('.') || !fs::is_directory(subfolder, ignored))
            continue;
        if (auto file = findFile(subfolder, identifier.substr(dash + 1), depth + 1); !file.empty())
            return file;
    }
    return {};
}

std::optional<std::string> contentsOf(const fs::path& file) {
    std::error_code error;
    // A FIFO would block.
    if (!fs::is_regular_file(file, error) || fs::file_size(file, error) > kMaximumSize || error)
        return std::nullopt;
    std::ifstream stream(file, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(stream), {});
}

bool isShownOnThisDesktop(const DesktopEntryFile& file) {
    const auto names = [](const std::vector<std::string>& list) {
        const auto desktops = partsOf(environment("XDG_CURRENT_DESKTOP", ""), ':');
        return std::ranges::any_of(
            desktops, [&](const auto& name) { return std::ranges::count(list, name) > 0; });
    };
    return (file.onlyShownIn.empty() || names(file.onlyShownIn)) && !names(file.notShownIn) &&
           (file.tryProgram.empty() || !findProgram(file.tryProgram).empty());
}

/// Returns 0 if the folder does not exist.
std::int64_t timeOfChange(const std::string& folder) {
    struct stat status {};
    if (stat(folder.c_str(), &status) != 0)
        return 0;
    return std::int64_t{status.st_mtim.tv_sec} * 1'000'000'000 + status.st_mtim.tv_nsec;
}

/// Finds all files of a folder. A file is not found again under an identifier that exists already.
class FileSearch {
  public:
    /// Returns the identifiers, without ".desktop", and the files.
    std::vector<std::pair<std::string, fs::path>> files;
    std::vector<std::pair<std::string, std::int64_t>> folders;

    void search(const fs::path& folder, const std::string& prefix = {}, int depth = 0) {
        folders.emplace_back(folder.string(), timeOfChange(folder.string()));
        std::error_code error;
        std::vector<fs::path> subfolders;
        for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
             entry.increment(error)) {
            std::error_code ignored;
            const fs::path& path = entry->path();
            if (path.extension() == kExtension)
                add(prefix + path.stem().string(), path);
            else if (depth < kMaximumDepth && entry->is_directory(ignored))
                subfolders.push_back(path);
        }
        for (const fs::path& subfolder : subfolders)
            search(subfolder, prefix + subfolder.filename().string() + '-', depth + 1);
    }

  private:
    void add(const std::string& identifier, const fs::path& path) {
        if (found_.insert(identifier).second)
            files.emplace_back(identifier, path);
    }

    std::set<std::string> found_;
};

} // namespace

std::string findProgram(const std::string& program) {
    return QStandardPaths::findExecutable(QString::fromStdString(program)).toStdString();
}

std::optional<DesktopEntryFile> DesktopEntries::read(const std::string& identifier) const {
    if (!identifier.ends_with(kExtension) || identifier.find('/') != std::string::npos ||
        identifier.find('\0') != std::string::npos)
        return std::nullopt;
    for (const fs::path& folder : baseFolders()) {
        const fs::path path = findFile(folder, identifier);
        if (path.empty())
            continue;
        const auto text = contentsOf(path);
        auto file = text ? parseDesktopEntry(*text, userLocales()) : std::nullopt;
        if (!file || file->isDeleted)
            return std::nullopt;
        file->entry.identifier = identifier;
        file->entry.path = path.string();
        file->entry.isShown = file->entry.isShown && isShownOnThisDesktop(*file);
        return file;
    }
    return std::nullopt;
}

bool DesktopEntries::isCurrent(const Index& index) {
    return std::ranges::all_of(index.folders, [](const auto& folder) {
        return timeOfChange(folder.first) == folder.second;
    });
}

DesktopEntries::Index DesktopEntries::makeIndex() {
    FileSearch search;
    for (const fs::path& folder : baseFolders())
        search.search(folder);
    Index index{.byIdentifier = {}, .byWindowClass = {}, .folders = std::move(search.folders)};
    Identifiers ofHidden; // window classes of entries that menus do not offer
    for (const auto& [stem, path] : search.files) {
        const auto text = contentsOf(path);
        const auto file = text ? parseDesktopEntry(*text, {}) : std::nullopt;
        if (!file || file->isDeleted)
            continue;
        const std::string identifier = stem + std::string(kExtension);
        Identifiers& byClass = file->entry.isShown ? index.byWindowClass : ofHidden;
        index.byIdentifier.emplace(stem, identifier);
        index.byIdentifier.emplace(lowerCase(stem), identifier);
        if (!file->windowClass.empty()) {
            byClass.emplace(file->windowClass, identifier);
            byClass.emplace(lowerCase(file->windowClass), identifier);
        }
    }
    index.byWindowClass.merge(ofHidden);
    return index;
}

std::string DesktopEntries::identifierForWindow(const std::string& applicationId,
                                                const std::string& instance,
                                                const std::string& windowClass) {
    if (!index_ || !isCurrent(*index_))
        index_ = makeIndex();
    const auto& [byIdentifier, byWindowClass, folders] = *index_;
    const std::initializer_list<std::pair<const Identifiers*, const std::string*>> searches{
        {&byIdentifier, &applicationId},
        {&byWindowClass, &instance},
        {&byWindowClass, &windowClass},
        {&byIdentifier, &windowClass},
        {&byIdentifier, &instance}};
    for (const auto& [identifiers, name] : searches) {
        std::string dashed = lowerCase(*name);
        std::ranges::replace(dashed, ' ', '-');
        for (const std::string& key : {*name, lowerCase(*name), dashed})
            if (const auto found = identifiers->find(key); found != identifiers->end())
                return found->second;
    }
    return {};
}

} // namespace platform::qt
