#include "extras/HalvexASMMenu/Favourites.h"

#include "platform/Log.h"

#include <algorithm>
#include <string_view>
#include <utility>

using namespace platform;

namespace switcher {
namespace {

constexpr const char* kKey = "Favourites"; // "SwitcherFavourites" in the file
constexpr std::string_view kExtension = ".desktop";

} // namespace

Favourites::Favourites(Preferences settings) : settings_(std::move(settings)) {}

/// Returns each one once, with the extension.
std::vector<std::string> Favourites::identifiers() const {
    std::vector<std::string> result;
    for (std::string name : settings_.strings(kKey)) {
        if (!name.ends_with(kExtension))
            name += kExtension;
        if (std::ranges::find(result, name) == result.end())
            result.push_back(std::move(name));
    }
    return result;
}

std::vector<DesktopEntry> Favourites::installed() {
    std::vector<DesktopEntry> result;
    for (const std::string& identifier : identifiers()) {
        if (auto entry = applications().desktopEntry(identifier)) {
            missing_.erase(identifier);
            result.push_back(std::move(*entry));
        } else if (missing_.insert(identifier).second) {
            logLine("cannot show the favourite %@: there is no desktop entry with this name",
                    identifier);
        }
    }
    return result;
}

bool Favourites::contains(const std::string& identifier) const {
    const auto all = identifiers();
    return std::ranges::find(all, identifier) != all.end();
}

bool Favourites::add(const std::string& identifier) {
    auto all = identifiers();
    if (std::ranges::find(all, identifier) == all.end())
        all.push_back(identifier);
    return settings_.set(kKey, all);
}

bool Favourites::remove(const std::string& identifier) {
    auto all = identifiers();
    std::erase(all, identifier);
    return settings_.set(kKey, all);
}

} // namespace switcher
