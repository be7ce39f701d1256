#include "extras/icalendar/CalendarFolder.h"

#include "platform/FileManager.h"
#include "platform/Log.h"

#include <algorithm>
#include <sys/stat.h>
#include <utility>

namespace extras::icalendar {
namespace {

constexpr std::size_t kMaximumFiles = 64;
constexpr std::uint64_t kMaximumFileBytes = 8 << 20;
constexpr std::string_view kExtension = ".ics";

bool isCalendarName(std::string_view name) {
    return name.size() > kExtension.size() && name.front() != '.' &&
           isSame(name.substr(name.size() - kExtension.size()), kExtension);
}

CalendarFolder::File::Version versionOf(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0)
        return {};
    return {status.st_dev,
            status.st_ino,
            status.st_size,
            {status.st_mtim.tv_sec, status.st_mtim.tv_nsec, status.st_ctim.tv_sec,
             status.st_ctim.tv_nsec}};
}

} // namespace

std::vector<std::string> CalendarFolder::names() {
    auto names = platform::fileManager().contentsOfDirectory(path_);
    const bool isReadable = names || !platform::fileManager().fileExists(path_);
    if (!isReadable && isReadable_)
        platform::logLine("cannot read the folder of calendars %@", path_);
    isReadable_ = isReadable;
    if (!names)
        return {};
    std::erase_if(*names, [](const std::string& name) { return !isCalendarName(name); });
    std::ranges::sort(*names);
    const bool hasTooMany = names->size() > kMaximumFiles;
    if (hasTooMany && !hasTooMany_)
        platform::logLine("ignoring calendars in %@: more than %d files", path_, kMaximumFiles);
    hasTooMany_ = hasTooMany;
    if (hasTooMany)
        names->resize(kMaximumFiles);
    return std::move(*names);
}

void CalendarFolder::update() {
    const std::vector<std::string> present = names();
    std::erase_if(files_, [&](const auto& entry) {
        return !std::ranges::binary_search(present, entry.first);
    });
    for (const std::string& name : present) {
        const auto version = versionOf(path_ + '/' + name);
        const auto [entry, isNew] = files_.try_emplace(name);
        if (!isNew && entry->second.version == version)
            continue;
        entry->second = {.version = version};
        read(name, entry->second);
    }
}

void CalendarFolder::read(const std::string& name, File& file) const {
    const std::string path = path_ + '/' + name;
    const auto text = platform::fileManager().readFile(path, kMaximumFileBytes);
    if (!text) {
        file.isBroken = true;
        platform::logLine("cannot read calendar %@: %@", path, text.reason);
        return;
    }
    ParsedCalendar parsed = parseCalendar(*text.contents);
    file.calendar = std::move(parsed.calendar);
    file.isBroken = !parsed.defect.empty();
    if (file.isBroken)
        platform::logLine("cannot read all of calendar %@: %@", path, parsed.defect);
    if (!parsed.unsupported.empty())
        platform::logLine("cannot repeat all events of calendar %@: %@", path, parsed.unsupported);
}

} // namespace extras::icalendar
