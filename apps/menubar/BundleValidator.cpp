#include "apps/menubar/BundleValidator.h"

#include "platform/DynamicLoader.h"
#include "platform/base/PathStrings.h"
#include "platform/widgets/MenuExtraPlugIn.h"

#include <algorithm>
#include <array>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

using namespace platform;

namespace apps {
namespace {

constexpr std::size_t kMaxNameLength = 255; // bytes; keeps a note in the crash journal short

// Each of these returns why the bundle is refused, or an empty string.

std::string ownershipError(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0)
        return path + " is missing";
    if (status.st_uid != geteuid() && status.st_uid != 0)
        return path + " belongs to another user";
    const bool writableByOthers = (status.st_mode & S_IWOTH) != 0;
    const bool writableByForeignGroup =
        (status.st_mode & S_IWGRP) != 0 && status.st_gid != getegid();
    if (writableByOthers || writableByForeignGroup)
        return path + " is writable by other users";
    return {};
}

std::string fileError(const std::string& bundle, const std::string& executable) {
    const std::string contents = appendingPathComponent(bundle, "Contents");
    const std::array paths{bundle, contents, appendingPathComponent(contents, "Info.plist"),
                           deletingLastPathComponent(executable), executable};
    for (const std::string& path : paths) {
        if (std::string error = ownershipError(path); !error.empty())
            return error;
    }
    return {};
}

std::string infoError(const Bundle& bundle) {
    if (bundle.bundleIdentifier().value_or("").empty())
        return "Info.plist has no CFBundleIdentifier";
    for (const char* key : {"CFBundleIdentifier", "CFBundleVersion"})
        if (bundle.stringForInfoDictionaryKey(key).value_or("").size() > kMaxNameLength)
            return std::string(key) + " in Info.plist is longer than " +
                   std::to_string(kMaxNameLength) + " bytes";
    if (bundle.stringForInfoDictionaryKey("NSPrincipalClass").value_or("").empty())
        return "Info.plist has no NSPrincipalClass";
    if (!bundle.executablePath())
        return "Info.plist has no CFBundleExecutable";
    const PropertyList* abi = bundle.infoDictionary()->find(kMenuExtraABIKey);
    const auto number = abi ? abi->integer() : std::nullopt;
    if (!number)
        return std::string("Info.plist has no number for ") + kMenuExtraABIKey;
    if (*number != kMenuExtraABI)
        return "it is built for ABI " + std::to_string(*number) + ", the bar has ABI " +
               std::to_string(kMenuExtraABI);
    return {};
}

std::string codeError(const std::string& executable) {
    const auto& loader = dynamicLoader();
    const auto architectures = loader.executableArchitectures(executable);
    if (architectures.empty())
        return "no executable code in " + executable;
    const int host = loader.hostArchitecture();
    if (std::find(architectures.begin(), architectures.end(), host) == architectures.end())
        return executable + " is built for another processor (" +
               std::to_string(architectures.front()) + ")";
    return {};
}

ValidatedBundle refused(std::string reason) {
    ValidatedBundle result;
    result.reason = std::move(reason);
    return result;
}

} // namespace

ValidatedBundle validateBundle(const std::string& path) {
    std::string reason;
    const auto bundle = Bundle::bundleWithPath(path, &reason);
    if (!bundle || !bundle->infoDictionary())
        return refused(reason);
    if (reason = infoError(*bundle); !reason.empty())
        return refused(reason);
    const std::string executable = *bundle->executablePath();
    if (reason = fileError(path, executable); !reason.empty())
        return refused(reason);
    if (reason = codeError(executable); !reason.empty())
        return refused(reason);
    return {bundle,
            *bundle->bundleIdentifier(),
            executable,
            *bundle->stringForInfoDictionaryKey("NSPrincipalClass"),
            {}};
}

} // namespace apps
