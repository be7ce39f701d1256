#include "menuextras/MenuExtraCatalogue.h"

#include "menuextras/ExportedIdentifiers.h"
#include "menuextras/MenuExtraTools.h"
#include "paths/PreferencePane.h"
#include "paths/ovxPaths.h"
#include "platform/Log.h"
#include "platform/base/PathStrings.h"

#include <algorithm>
#include <array>

using menuextras::MenuExtraKind;
using platform::appendingPathComponent;

namespace {

std::shared_ptr<platform::Bundle> preferencePane() {
    auto loaded = paths::loadedPreferencePane();
    return loaded ? loaded : paths::installedPreferencePane();
}

std::optional<std::string> pathInFolder(const std::string& folder, std::int32_t tag) {
    if (const MenuExtraKind* kind = menuextras::kindOfTag(tag))
        return appendingPathComponent(folder, kind->fileName);
    platform::logLine("error tag not set");
    return std::nullopt;
}

} // namespace

/// The gaps in the last two columns are meant: tag 33 came after the loaded test, and the second
/// generation is only ever taken away.
std::span<const MenuExtraKind> menuextras::allKinds() {
    using enum menuextras::Knows;
    static const std::array<MenuExtraKind, 9> kinds{{
        // tag, identifier, file, loaded test, toggle
        {1, HalvexMenuID, kHalvexTimeExtraFile, Yes, Yes},
        {2, HalvexASMid, kHalvexProASMFile, Yes, Yes},
        {3, HalvexTodoID, "hxCALMenuExtra.menu", Yes, Yes},
        {4, HalvexNetMenuID, "hxWirelessMenu.menu", Yes, Yes},
        {5, HalvexProCalMenuID, kHalvexDateCalExtraFile, Yes, Yes},
        {6, HalvexProOldCalMenuID, kHalvexCalFile, Yes, Yes},
        {31, Halvex2MenuID, kHalvexExtraFile, Yes, No},
        {32, Halvex2ASMid, kHalvexASMFile, Yes, No},
        {33, HalvexTimeOnlyMenuID, kHalvexTimeOnlyExtraFile, No, Yes},
    }};
    return kinds;
}

const MenuExtraKind* menuextras::kindOfTag(std::int32_t tag) {
    const auto found = std::ranges::find(menuextras::allKinds(), tag, &MenuExtraKind::tag);
    return found == menuextras::allKinds().end() ? nullptr : &*found;
}

std::string menuextras::installedFolder() {
    return HalvexFilePaths::ovxGetUserQuorvaneSoftwareFolder(HalvexMenuExtraFolder);
}

std::optional<std::string> HalvexMenuExtraTools::HalvexPrefsPanelPath() {
    const auto pane = preferencePane();
    return pane ? std::optional(pane->bundlePath()) : std::nullopt;
}

std::optional<std::string> HalvexMenuExtraTools::HalvexPrefsPlugins() {
    const auto pane = preferencePane();
    return pane ? std::optional(pane->builtInPlugInsPath()) : std::nullopt;
}

std::int32_t HalvexMenuExtraTools::menuExtraTagFromID(const std::string& identifier) {
    const auto found =
        std::ranges::find(menuextras::allKinds(), identifier, &MenuExtraKind::identifier);
    return found == menuextras::allKinds().end() ? -1 : found->tag;
}

std::optional<std::string> HalvexMenuExtraTools::menuExtraPaths(std::int32_t tag) {
    const auto plugIns = HalvexPrefsPlugins();
    return plugIns ? pathInFolder(*plugIns, tag) : std::nullopt;
}

std::optional<std::string> HalvexMenuExtraTools::menuExtraInstalledPaths(std::int32_t tag) {
    return pathInFolder(menuextras::installedFolder(), tag);
}
