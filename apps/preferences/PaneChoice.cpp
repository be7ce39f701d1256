#include "apps/preferences/PaneChoice.h"

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

PaneChoice paneAtPath(const std::string& path) {
    PaneChoice choice{nullptr, path, {}};
    std::string reason;
    if (platform::pathExtension(path) != kExtension)
        choice.reason = "It is no preference pane: its name does not end in \".prefPane\".";
    else if (!fileManager().fileExists(path))
        choice.reason = "There is nothing at this place.";
    else if (auto pane = Bundle::bundleWithPath(path, &reason); !pane || !pane->infoDictionary())
        choice.reason = "It cannot be read (" + reason + ").";
    else if (!pane->bundleIdentifier())
        choice.reason = "Its Info.plist gives no identifier.";
    else
        choice.pane = std::move(pane);
    return choice;
}

PaneChoice paneWithIdentifier(const std::string& identifier, const std::shared_ptr<Bundle>& open) {
    if (open && open->bundleIdentifier() == identifier)
        return {open, identifier, {}};
    for (const char* place : kPaneFolders) {
        const std::string folder = platform::expandingTildeInPath(place);
        auto names = fileManager().contentsOfDirectory(folder).value_or(std::vector<std::string>());
        std::ranges::sort(names);
        for (const std::string& name : names) {
            auto choice = paneAtPath(platform::appendingPathComponent(folder, name));
            if (choice.pane && choice.pane->bundleIdentifier() == identifier)
                return {choice.pane, identifier, {}};
        }
    }
    return {nullptr, identifier, "No preference pane with this identifier is installed."};
}

std::string paneName(const Bundle& pane) {
    const std::string folder = platform::lastPathComponent(pane.bundlePath());
    return pane.stringForInfoDictionaryKey("CFBundleName")
        .value_or(folder.substr(0, folder.rfind('.')));
}

} // namespace apps
