#include "menuextras/MenuExtraCatalogue.h"

#include "identifiers/ExportedIdentifiers.h"
#include "menuextras/MenuExtraTools.h"
#include "paths/PreferencePane.h"
#include "paths/ovxPaths.h"
#include "platform/Log.h"
#include "platform/Operation.h"
#include "platform/base/PathStrings.h"

#include <algorithm>
#include <array>
#include <string_view>

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

namespace menuextras {

std::span<const MenuExtraKind> allKinds() {
    // Deliberate gaps: isHalvexExtraLoaded is older than tag 33; tags 31 and 32 are only removed.
    static const std::array<MenuExtraKind, 9> kinds{{
        // tag, identifier, file name, is queryable, is toggleable
        {1, HalvexMenuID, kHalvexTimeExtraFile, true, true},
        {2, HalvexASMid, kHalvexProASMFile, true, true},
        {3, HalvexTodoID, "hxCALMenuExtra.menu", true, true},
        {4, HalvexNetMenuID, "hxWirelessMenu.menu", true, true},
        {5, HalvexProCalMenuID, kHalvexDateCalExtraFile, true, true},
        {6, HalvexProOldCalMenuID, kHalvexCalFile, true, true},
        {31, Halvex2MenuID, kHalvexExtraFile, true, false},
        {32, Halvex2ASMid, kHalvexASMFile, true, false},
        {33, HalvexTimeOnlyMenuID, kHalvexTimeOnlyExtraFile, false, true},
    }};
    return kinds;
}

const MenuExtraKind* kindOfTag(std::int32_t tag) {
    const auto found = std::ranges::find(allKinds(), tag, &MenuExtraKind::tag);
    return found == allKinds().end() ? nullptr : &*found;
}

std::string installedFolder() {
    return HalvexFilePaths::ovxGetUserQuorvaneSoftwareFolder(HalvexMenuExtraFolder);
}

} // namespace menuextras

std::optional<std::string> HalvexMenuExtraTools::HalvexPrefsPanelPath() {
    return platform::guardedOperation([&] {
        const auto pane = preferencePane();
        return pane ? std::optional(pane->bundlePath()) : std::nullopt;
    });
}

std::optional<std::string> HalvexMenuExtraTools::HalvexPrefsPlugins() {
    return platform::guardedOperation([&] {
        const auto pane = preferencePane();
        return pane ? std::optional(pane->builtInPlugInsPath()) : std::nullopt;
    });
}

std::int32_t HalvexMenuExtraTools::menuExtraTagFromID(const std::string& identifier) {
    const auto found = std::ranges::find(
        menuextras::allKinds(), std::string_view(identifier),
        [](const MenuExtraKind& kind) { return std::string_view(kind.identifier); });
    return found == menuextras::allKinds().end() ? -1 : found->tag;
}

std::optional<std::string> HalvexMenuExtraTools::menuExtraPaths(std::int32_t tag) {
    return platform::guardedOperation([&] {
        const auto plugIns = HalvexPrefsPlugins();
        return plugIns ? pathInFolder(*plugIns, tag) : std::nullopt;
    });
}

std::optional<std::string> HalvexMenuExtraTools::menuExtraInstalledPaths(std::int32_t tag) {
    return platform::guardedOperation(
        [&] { return pathInFolder(menuextras::installedFolder(), tag); });
}
