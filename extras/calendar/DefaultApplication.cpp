#include "extras/calendar/DefaultApplication.h"

#include "platform/Applications.h"
#include "platform/FileManager.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <vector>

using namespace platform;

namespace extras {
namespace {

constexpr std::uint64_t kMaximumBytes = 1 << 20; // of a list

std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, separator);)
        if (!part.empty())
            parts.push_back(part);
    return parts;
}

/// Returns the value of an environment variable, or @p fallback if it is unset or empty.
std::string environment(const char* name, const std::string& fallback) {
    const char* const value = std::getenv(name);
    return value && *value ? value : fallback;
}

/// Returns a folder of the user, followed by those of the system.
std::vector<std::string> folders(const std::string& user, const std::string& system,
                                 const std::string& subfolder) {
    std::vector<std::string> result{user + subfolder};
    for (const std::string& folder : split(system, ':'))
        result.push_back(folder + subfolder);
    return result;
}

/// Returns the value of a key in one group of a file in the format of desktop entries.
std::string valueIn(const std::string& path, std::string_view group, std::string_view key) {
    bool isInGroup = false;
    for (const std::string& line :
         split(fileManager().readFile(path, kMaximumBytes).contents.value_or(""), '\n')) {
        if (line.starts_with('['))
            isInGroup = line == '[' + std::string(group) + ']';
        else if (isInGroup && line.starts_with(std::string(key) + '='))
            return line.substr(key.size() + 1);
    }
    return {};
}

/// Returns the first installed entry of a list such as "a.desktop;b.desktop;".
std::string firstInstalled(const std::string& entries) {
    for (const std::string& entry : split(entries, ';'))
        if (applications().desktopEntry(entry))
            return entry;
    return {};
}

/// Returns the names of a list of choices: first those for the running desktops.
std::vector<std::string> listNames() {
    std::vector<std::string> names;
    for (std::string desktop : split(environment("XDG_CURRENT_DESKTOP", ""), ':')) {
        std::ranges::transform(desktop, desktop.begin(),
                               [](unsigned char c) { return std::tolower(c); });
        names.push_back('/' + desktop + "-mimeapps.list");
    }
    names.emplace_back("/mimeapps.list");
    return names;
}

} // namespace

std::string defaultApplication(std::string_view mimeType) {
    const std::string home = fileManager().homeDirectory();
    const auto configurations = folders(environment("XDG_CONFIG_HOME", home + "/.config"),
                                        environment("XDG_CONFIG_DIRS", "/etc/xdg"), "");
    const auto data =
        folders(environment("XDG_DATA_HOME", home + "/.local/share"),
                environment("XDG_DATA_DIRS", "/usr/local/share:/usr/share"), "/applications");
    auto chosen = configurations;
    chosen.insert(chosen.end(), data.begin(), data.end());
    for (const std::string& folder : chosen)
        for (const std::string& name : listNames())
            if (auto entry =
                    firstInstalled(valueIn(folder + name, "Default Applications", mimeType));
                !entry.empty())
                return entry;
    for (const std::string& folder : data)
        if (auto entry =
                firstInstalled(valueIn(folder + "/mimeinfo.cache", "MIME Cache", mimeType));
            !entry.empty())
            return entry;
    return {};
}

} // namespace extras
