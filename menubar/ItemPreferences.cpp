#include "menubar/ItemPreferences.h"

#include "identifiers/ExportedIdentifiers.h"
#include "platform/Operation.h"

#include <algorithm>
#include <array>
#include <utility>

using platform::Preferences;

namespace menubar {
namespace {

/// Returns the prefix of the keys of an item of the product, or null for any other item. No prefix
/// starts with another one.
const char* productPrefix(std::string_view identifier) {
    const std::array<std::pair<std::string_view, const char*>, 9> prefixes{{
        {HalvexMenuID, "MenuClock"},
        {Halvex2MenuID, "SecondClock"},
        {HalvexTimeOnlyMenuID, "TimeOnlyClock"},
        {HalvexASMid, "Switcher"},
        {Halvex2ASMid, "SecondSwitcher"},
        {HalvexTodoID, "ToDo"},
        {HalvexNetMenuID, "Wireless"},
        {HalvexProCalMenuID, "DateCalendar"},
        {HalvexProOldCalMenuID, "Calendar"},
    }};
    const auto* found =
        std::ranges::find(prefixes, identifier, &decltype(prefixes)::value_type::first);
    return found == prefixes.end() ? nullptr : found->second;
}

} // namespace

Preferences preferencesOf(const std::shared_ptr<platform::Bundle>& bundle) {
    return platform::guardedOperation([&] {
        const auto identifier = bundle ? bundle->bundleIdentifier() : std::nullopt;
        const char* const prefix = identifier ? productPrefix(*identifier) : nullptr;
        if (!prefix)
            return platform::preferences(identifier.value_or(""));
        return Preferences(platform::preferencesService().domain(appHalvex4Prefs), prefix);
    });
}

std::string productPreferencesFile() {
    return platform::guardedOperation([] { return platform::preferences(appHalvex4Prefs).file(); });
}

} // namespace menubar
