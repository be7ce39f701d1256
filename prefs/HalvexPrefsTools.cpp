#include "prefs/HalvexPrefsTools.h"

#include "identifiers/ExportedIdentifiers.h"
#include "menuextras/MenuExtraTools.h"
#include "paths/PreferencePane.h"
#include "platform/Log.h"
#include "platform/Operation.h"
#include "platform/ScriptRunner.h"
#include "platform/Workspace.h"
#include "platform/base/PathStrings.h"
#include "platform/runtime/DetachedThread.h"

using platform::logLine;

namespace {

// The identifier is inserted unchanged, without quoting it.
constexpr const char* kScriptSelectingPane = "tell application \"System Preferences\"\n"
                                             "activate\n"
                                             "set the current pane to pane id \"%@\"\n"
                                             "end tell\n";

} // namespace

std::shared_ptr<platform::Bundle> HalvexPrefsTools::HalvexPrefsBundle() {
    return platform::guardedOperation([&]() -> std::shared_ptr<platform::Bundle> {
        if (auto loaded = paths::loadedPreferencePane())
            return loaded;
        for (const char* path :
             {HalvexProPrefsAllUsers, "/Library/PreferencePanes/HalvexPro.prefPane",
              HalvexProPrefsAUser, "~/Library/PreferencePanes/HalvexPro.prefPane"})
            if (auto pane = paths::preferencePaneAt(path))
                return pane;
        return nullptr;
    });
}

std::optional<std::string> HalvexPrefsTools::HalvexPrefsPath() {
    return platform::guardedOperation([&]() -> std::optional<std::string> {
        if (const auto pane = HalvexPrefsBundle())
            return pane->bundlePath();
        logLine("Halvex Pref bundle not found.");
        return std::nullopt;
    });
}

std::optional<std::string> HalvexPrefsTools::HalvexOpenPrefs() {
    return platform::guardedOperation([&]() -> std::optional<std::string> {
        auto path = HalvexPrefsPath();
        if (!path)
            return std::nullopt;
        if (platform::sharedWorkspace().openFile(*path, "System Preferences"))
            logLine("Halvex Prefs opened at: %@", path);
        else
            logLine("Halvex Prefs failed to open %@", path);
        return path;
    });
}

void HalvexPrefsTools::openPrefsSelected(const std::string& paneIdentifier) {
    platform::guardedOperation(
        [&] { platform::detachThread([paneIdentifier] { openPrefsThread(paneIdentifier); }); });
}

void HalvexPrefsTools::openPrefsThread(const std::string& paneIdentifier) {
    platform::guardedOperation([&] {
        const std::string script = platform::formatLogLine(kScriptSelectingPane, {paneIdentifier});
        const auto error = platform::scriptRunner().run(script);
        // The script is part of the format, because line feeds in an argument would be escaped.
        if (error)
            logLine(std::string("AppleScript:") + kScriptSelectingPane + "\n error: %@",
                    paneIdentifier, error);
    });
}

std::optional<std::string> HalvexPrefsTools::getHalvexBGApplicationPath() {
    return platform::guardedOperation([&]() -> std::optional<std::string> {
        if (const auto plugIns = HalvexMenuExtraTools::HalvexPrefsPlugins())
            return platform::appendingPathComponent(*plugIns, "Halvex.app");
        logLine("Halvex error: getHalvexPath failed\n");
        return std::nullopt;
    });
}

bool HalvexPrefsTools::findHalvexBGProcess(platform::ProcessSerialNumber* serialNumber) {
    return platform::guardedOperation([&] {
        for (const platform::RunningProcess& process : platform::processList().processes()) {
            if (process.name == "Halvex 2")
                logLine("old Halvex 2 version running");
            if (process.name != "Halvex")
                continue;
            if (serialNumber)
                *serialNumber = process.serialNumber;
            return true;
        }
        return false;
    });
}
