#include "platform/posix/PosixTimeZones.h"

#include "platform/Defaults.h"
#include "platform/FileManager.h"
#include "platform/Log.h"
#include "platform/Operation.h"
#include "platform/base/NeverDestroyed.h"
#include "platform/base/PathStrings.h"
#include "platform/posix/LocalZone.h"
#include "platform/posix/TzFile.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <utility>

namespace platform::posix {
namespace {

/// The largest files of the tz database have 4 kB.
constexpr std::uint64_t kMostBytes = 256 * 1024;
constexpr std::uint64_t kMostBytesOfList = 4 * 1024 * 1024;
/// There are about 600 zones. More entries than this are garbage.
constexpr std::size_t kMostEntries = 2000;

std::string databaseFolder() {
    const char* const folder = std::getenv("TZDIR");
    return folder && *folder ? folder : "/usr/share/zoneinfo";
}

/// Returns whether @p name is a path that stays in the folder: parts of letters, digits and "+-_.",
/// none of which begins with a dot.
bool isValidName(std::string_view name) {
    constexpr std::size_t kMostLength = 255;
    constexpr std::string_view kAllowed = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                          "0123456789+-_./";
    return !name.empty() && name.size() <= kMostLength && !name.ends_with('/') &&
           name.find_first_not_of(kAllowed) == std::string_view::npos && !name.starts_with('/') &&
           !name.starts_with('.') && name.find("/.") == std::string_view::npos &&
           name.find("//") == std::string_view::npos;
}

/// Returns the zones in "tzdata.zi", the source text of the database: lines such as
/// "Z Europe/Paris ..." and "L Europe/Paris Europe/Monaco".
std::vector<std::string> listedNames(std::string_view text) {
    std::vector<std::string> names;
    for (std::size_t end = 0; !text.empty(); text.remove_prefix(std::min(end + 1, text.size()))) {
        end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        const bool isLink = line.starts_with("L ");
        if (!isLink && !line.starts_with("Z "))
            continue;
        line.remove_prefix(2);
        if (isLink)
            line.remove_prefix(std::min(line.find(' ') + 1, line.size()));
        const std::string_view name = line.substr(0, line.find(' '));
        if (isValidName(name))
            names.emplace_back(name);
    }
    return names;
}

/// Returns the files below @p folder whose contents are those of a zone, except the copies of the
/// whole database in "posix" and "right".
std::vector<std::string> namesOfFiles(const std::string& folder) {
    std::vector<std::string> names;
    std::error_code error;
    std::filesystem::recursive_directory_iterator entry(folder, error);
    for (; !error && entry != std::filesystem::recursive_directory_iterator();
         entry.increment(error)) {
        const std::string name = entry->path().lexically_relative(folder).string();
        std::error_code ignored;
        if (name == "posix" || name == "right")
            entry.disable_recursion_pending();
        if (!isValidName(name) || !entry->is_regular_file(ignored))
            continue;
        const auto contents = fileManager().readFile(entry->path().string(), kMostBytes).contents;
        if (contents && contents->starts_with("TZif"))
            names.push_back(name);
    }
    return names;
}

} // namespace

PosixTimeZones::PosixTimeZones() : PosixTimeZones(kLocalZoneFile) {}

PosixTimeZones::PosixTimeZones(std::string zoneFile) : zoneFile_(std::move(zoneFile)) {}

std::optional<PosixTimeZones::Version> PosixTimeZones::versionOf(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0)
        return std::nullopt;
    return Version{static_cast<std::int64_t>(status.st_dev),
                   static_cast<std::int64_t>(status.st_ino),
                   status.st_size,
                   status.st_mtim.tv_sec,
                   status.st_mtim.tv_nsec,
                   status.st_ctim.tv_nsec};
}

/// Logs each file's failure once, because an entry for it remains.
std::optional<ZoneRules> PosixTimeZones::read(const std::string& path) {
    const auto version = versionOf(path);
    if (const auto found = entries_.find(path);
        found != entries_.end() && found->second.version == version)
        return found->second.rules;
    const ReadFileResult file = fileManager().readFile(path, kMostBytes);
    TzFileResult parsed{std::nullopt, file.reason};
    if (file)
        parsed = parseTzFile(*file.contents);
    if (entries_.size() >= kMostEntries)
        entries_.clear();
    entries_[path] = {version, parsed.rules};
    if (!parsed.rules)
        logLine("cannot read the time zone %@: %@", path, parsed.reason);
    return parsed.rules;
}

void PosixTimeZones::refuseName(std::string_view name) {
    if (invalidNames_.size() >= kMostEntries)
        invalidNames_.clear();
    if (invalidNames_.emplace(name.substr(0, 256)).second)
        logLine("not the name of a time zone: %@", name);
}

std::optional<ZoneRules> PosixTimeZones::find(std::string_view name) {
    const std::string folder = databaseFolder();
    if (name.starts_with(folder + '/'))
        name.remove_prefix(folder.size() + 1);
    if (isValidName(name))
        return read(appendingPathComponent(folder, name));
    refuseName(name);
    return std::nullopt;
}

std::optional<ZoneRules> PosixTimeZones::zone(std::string_view name) {
    return guardedOperation([&] {
        const std::lock_guard lock(mutex_);
        return find(name);
    });
}

/// Like libc, prefers the file that TZ names to the rules in TZ, and takes an empty TZ as UTC.
std::optional<ZoneRules> PosixTimeZones::findLocal() {
    const std::string_view zone = zoneInEnvironment();
    if (zone.empty())
        return std::getenv("TZ") ? ZoneRules() : read(zoneFile_);
    const std::string folder = databaseFolder();
    if (isValidName(zone) && versionOf(appendingPathComponent(folder, zone)))
        return find(zone);
    if (auto rules = ZoneRules::parse(zone))
        return rules;
    return zone.starts_with('/') ? read(std::string(zone)) : find(zone);
}

ZoneRules PosixTimeZones::local() {
    static const ZoneRules utc;
    return guardedOperation([&] {
               const std::lock_guard lock(mutex_);
               return findLocal();
           })
        .value_or(utc);
}

std::string PosixTimeZones::localName() {
    return guardedOperation([&] {
        const std::string name = localZoneName(zoneFile_);
        const bool isZone = isValidName(name) && versionOf(databaseFolder() + '/' + name);
        return isZone ? name : std::string();
    });
}

std::vector<std::string> PosixTimeZones::names() {
    return guardedOperation([] {
        const std::string folder = databaseFolder();
        const auto list = fileManager().readFile(folder + "/tzdata.zi", kMostBytesOfList);
        auto names = list ? listedNames(*list.contents) : namesOfFiles(folder);
        std::ranges::sort(names);
        names.erase(std::unique(names.begin(), names.end()), names.end());
        return names;
    });
}

std::unique_ptr<Watch> PosixTimeZones::watchLocal(std::function<void()> handler) {
    return guardedStep([&] { return watchLocalZone(zoneFile_, std::move(handler)); });
}

} // namespace platform::posix

// Never destroyed: threads that outlive main may be using it.
platform::TimeZones& platform::defaults::timeZones() {
    static NeverDestroyed<posix::PosixTimeZones> zones;
    return zones.get();
}
