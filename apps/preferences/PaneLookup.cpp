#include "apps/preferences/PaneLookup.h"

#include "platform/FileManager.h"
#include "platform/base/PathStrings.h"

#include <algorithm>

using platform::Bundle;
using platform::fileManager;

namespace apps {
namespace {

constexpr const char* kPaneFolders[] = {"/Library/PreferencePanes", "~/Library/PreferencePanes"};
constexpr const char* kExtension = "prefPane";

} // namespace

PaneLookup findPaneAtPath(const std::string& path) {
    if (platform::pathExtension(path) != kExtension)
        return {nullptr, path, "It is not a preference pane: its name must end in \".prefPane\"."};
    if (!fileManager().fileExists(path))
        return {nullptr, path, "It does not exist. Check the path."};
    std::string reason;
    auto pane = Bundle::bundleWithPath(path, &reason);
    if (!pane || !pane->infoDictionary())
        return {nullptr, path, "It cannot be read (" + reason + "). Install it again."};
    if (!pane->bundleIdentifier())
        return {nullptr, path, "Its Info.plist has no CFBundleIdentifier. Install it again."};
    return {std::move(pane), path, {}};
}

PaneLookup findPaneWithIdentifier(const std::string& identifier,
                                  const std::shared_ptr<Bundle>& open) {
    if (open && open->bundleIdentifier() == identifier)
        return {open, identifier, {}};
    for (const char* place : kPaneFolders) {
        const std::string folder = platform::expandingTildeInPath(place);
        auto names = fileManager().contentsOfDirectory(folder).value_or(std::vector<std::string>());
        std::ranges::sort(names);
        for (const std::string& name : names) {
            auto pane = findPaneAtPath(platform::appendingPathComponent(folder, name)).pane;
            if (pane && pane->bundleIdentifier() == identifier)
                return {std::move(pane), identifier, {}};
        }
    }
    return {nullptr, identifier,
            "No pane with this identifier is installed. Install it in ~/Library/PreferencePanes."};
}

std::string paneName(const Bundle& pane) {
    const std::string folder = platform::lastPathComponent(pane.bundlePath());
    return pane.stringForInfoDictionaryKey("CFBundleName")
        .value_or(folder.substr(0, folder.rfind('.')));
}

} // namespace apps
