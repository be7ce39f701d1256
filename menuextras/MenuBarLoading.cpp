#include "identifiers/ExportedIdentifiers.h"
#include "menuextras/MenuExtraCatalogue.h"
#include "menuextras/MenuExtraTools.h"
#include "platform/Bundle.h"
#include "platform/Clock.h"
#include "platform/DynamicLoader.h"
#include "platform/Log.h"
#include "platform/MenuExtraServer.h"
#include "platform/Operation.h"
#include "platform/base/Exception.h"
#include "platform/base/PathStrings.h"
#include "platform/widgets/MenuExtra.h"

#include <algorithm>
#include <cxxabi.h>
#include <exception>

using menuextras::kMenuCrackerID;
using menuextras::kSystemClockID;
using menuextras::MenuExtraKind;
using platform::appendingPathComponent;
using platform::logLine;

namespace {

constexpr const char* kMenuCrackerFile = "MenuCracker.menu";

constexpr std::int32_t kPosition = 999;
constexpr std::int32_t kMenuCrackerPosition = 0;

constexpr std::uint64_t kPollMicroseconds = 250'000;
constexpr std::uint64_t kWaitMicroseconds = 2'000'000;

/// Returns 0 if the menu extra is not loaded.
platform::MenuExtraReference loadedReference(const std::string& identifier) {
    platform::MenuExtraReference reference = 0;
    return CoreMenuExtraGetMenuExtra(identifier, &reference) == 0 ? reference : 0;
}

std::int32_t requestLoad(const std::string& url, std::int32_t position) {
    return CoreMenuExtraAddMenuExtra(url, position, 0, 0, 0, 0);
}

bool waitUntilLoaded(const std::string& identifier) {
    for (std::uint64_t slept = 0; !HalvexMenuExtraTools::isExtraLoaded(identifier);
         slept += kPollMicroseconds) {
        if (slept >= kWaitMicroseconds)
            return false;
        platform::systemClock().sleep(kPollMicroseconds);
    }
    return true;
}

void requestMenuCracker() {
    const auto plugIns = HalvexMenuExtraTools::HalvexPrefsPlugins();
    if (!plugIns)
        return;
    const auto url = platform::fileURLWithPath(appendingPathComponent(*plugIns, kMenuCrackerFile));
    if (url)
        requestLoad(*url, kMenuCrackerPosition);
    else
        logLine("MenuCracker not loaded -- missing?");
}

std::string listText(const std::vector<int>& numbers) {
    std::string text;
    for (const int number : numbers)
        text += (text.empty() ? "" : ", ") + std::to_string(number);
    return '(' + text + ')';
}

void logArchitectures(const platform::Bundle& bundle) {
    std::vector<int> architectures = bundle.executableArchitectures();
    std::ranges::sort(architectures);
    if (architectures.size() <= 2)
        logLine("checkPreflight: MenuExtra %@ arch %@", bundle.bundlePath(),
                listText(architectures));
}

std::int32_t load(const std::optional<std::string>& url, const std::string& identifier) {
    if (HalvexMenuExtraTools::isExtraLoaded(identifier))
        return 0;
    if (!url) {
        logLine("loadExtraWithCrack: invalid path: nil, id: %@", identifier);
        return -2;
    }
    HalvexMenuExtraTools::checkPreflight(*url);
    std::int32_t status = requestLoad(*url, kPosition);
    if (waitUntilLoaded(identifier))
        return 0;
    if (!HalvexMenuExtraTools::isExtraLoaded(kMenuCrackerID)) {
        requestMenuCracker();
        status = requestLoad(*url, kPosition);
    }
    if (waitUntilLoaded(identifier))
        return status;
    logLine("loadExtraWithCrack: unable to load Halvex menu extra %@ bundleid %@ - %d\n", *url,
            identifier, status);
    return status != 0 ? status : -1;
}

void turnOn(const MenuExtraKind& kind, const std::string& shipped, const std::string& folder) {
    HalvexMenuExtraTools::installMenuExtra(shipped);
    // The system's clock is unloaded only after a fresh load, so that users can add it back.
    if (HalvexMenuExtraTools::isExtraLoaded(kind.identifier))
        return;
    const std::string installed =
        appendingPathComponent(folder, platform::lastPathComponent(shipped));
    HalvexMenuExtraTools::loadExtraWithCrack(platform::fileURLWithPath(installed), kind.identifier);
    if (kind.tag == 1 && HalvexMenuExtraTools::isExtraLoaded(kind.identifier) &&
        HalvexMenuExtraTools::isExtraLoaded(kSystemClockID))
        HalvexMenuExtraTools::removeExtra(kSystemClockID);
}

void turnOff(const MenuExtraKind& kind, const std::string& shipped) {
    if (HalvexMenuExtraTools::isExtraLoaded(kind.identifier))
        HalvexMenuExtraTools::removeExtra(kind.identifier);
    else
        logLine("MenuExtra (%@) removal failed.", kind.identifier);
    HalvexMenuExtraTools::removeMenuExtra(shipped);
}

void reportException(const std::string& name, const std::string& reason,
                     const std::optional<std::string>& userInfo) {
    logLine("MenuExtra had an exception name: %@   reason: %@   userInfo: %@", name, reason,
            userInfo);
    platform::systemLog().beep();
}

} // namespace

bool HalvexMenuExtraTools::isExtraLoaded(const std::string& identifier) {
    return platform::guardedOperation([&] { return loadedReference(identifier) != 0; });
}

bool HalvexMenuExtraTools::isHalvexExtraLoaded(std::int32_t tag) {
    return platform::guardedOperation([&] {
        const MenuExtraKind* kind = menuextras::kindOfTag(tag);
        if (kind && kind->isQueryable)
            return isExtraLoaded(kind->identifier);
        logLine("bad tag sent to isHalvexExtraLoaded:");
        return false;
    });
}

void HalvexMenuExtraTools::removeExtra(const std::string& identifier) {
    platform::guardedOperation([&] {
        if (const auto reference = loadedReference(identifier))
            CoreMenuExtraRemoveMenuExtra(reference, 0);
        else
            logLine("Unable to remove menu extra \"%@\", it is not loaded.", identifier);
    });
}

void HalvexMenuExtraTools::checkPreflight(const std::string& url) {
    platform::guardedOperation([&] {
        if (!platform::isFileURL(url)) {
            logLine("checkPreflight not a file url");
            return;
        }
        const auto path = platform::pathOfFileURL(url);
        const auto bundle = path ? platform::Bundle::bundleWithPath(*path) : nullptr;
        if (!bundle) {
            logLine("checkPreflight extraBundle nil - %@", path);
            return;
        }
        logArchitectures(*bundle);
        const auto executable = bundle->executablePath();
        if (!executable) {
            logLine("checkPreflight: executablePath nil");
            return;
        }
        if (!identifiers::isVerbose()) // the result is only logged, and needs a child process
            return;
        std::string reason;
        if (platform::dynamicLoader().preflight(*executable, reason))
            logLine("MenuExtra passed dlopen_preflight(%@)", bundle->bundlePath());
        else
            logLine("MenuExtra Error: \r\t%@\r", reason.empty() ? "n/a" : reason);
    });
}

std::int32_t HalvexMenuExtraTools::loadExtraWithCrack(const std::optional<std::string>& url,
                                                      const std::string& withID) {
    return platform::guardedOperation([&] { return load(url, withID); }, -1);
}

void HalvexMenuExtraTools::menuExtraToggle(std::int32_t tag, std::int32_t state) {
    platform::guardedOperation([&] {
        const std::string folder = menuextras::installedFolder();
        const auto plugIns = HalvexPrefsPlugins();
        if (!plugIns) {
            platform::systemLog().beep();
            logLine("MenuExtraTools - error halvex PrefsPluginPath nil");
            return;
        }
        const MenuExtraKind* kind = menuextras::kindOfTag(tag);
        if (!kind || !kind->isToggleable) {
            logLine("error tag not set");
            logLine("Halvex Error: Menu Extra %@ - path: %@", nullptr,
                    appendingPathComponent(*plugIns, kMenuCrackerFile));
            return;
        }
        const std::string shipped = appendingPathComponent(*plugIns, kind->fileName);
        try {
            if (state != 0)
                turnOn(*kind, shipped, folder);
            else
                turnOff(*kind, shipped);
        } catch (const abi::__forced_unwind&) {
            throw; // the thread is being cancelled
        } catch (const platform::Exception& exception) {
            reportException(exception.name(), exception.reason(), exception.userInfo());
        } catch (const std::exception& exception) {
            reportException("std::exception", exception.what(), std::nullopt);
        } catch (...) {
            reportException("unknown", "(null)", std::nullopt);
        }
    });
}
