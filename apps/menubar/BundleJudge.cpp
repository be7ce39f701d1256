#include "apps/menubar/BundleJudge.h"

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

constexpr std::size_t kLongestName = 255; // what is noted of an item stays short

/// Why somebody else could have changed what is at @p path; empty when nobody could.
std::string reasonAgainstOwner(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0)
        return path + " is missing";
    if (status.st_uid != geteuid() && status.st_uid != 0)
        return path + " belongs to another user";
    const bool othersWrite = (status.st_mode & S_IWOTH) != 0;
    const bool strangersWrite = (status.st_mode & S_IWGRP) != 0 && status.st_gid != getegid();
    if (othersWrite || strangersWrite)
        return path + " can be written by others";
    return {};
}

std::string reasonAgainstFiles(const std::string& bundle, const std::string& executable) {
    const std::string contents = appendingPathComponent(bundle, "Contents");
    const std::array paths{bundle, contents, appendingPathComponent(contents, "Info.plist"),
                           deletingLastPathComponent(executable), executable};
    for (const std::string& path : paths) {
        if (std::string reason = reasonAgainstOwner(path); !reason.empty())
            return reason;
    }
    return {};
}

std::string reasonAgainstInfo(const Bundle& bundle) {
    if (bundle.bundleIdentifier().value_or("").empty())
        return "Info.plist has no CFBundleIdentifier";
    for (const char* key : {"CFBundleIdentifier", "CFBundleVersion"})
        if (bundle.stringForInfoDictionaryKey(key).value_or("").size() > kLongestName)
            return std::string("Info.plist's ") + key + " is longer than " +
                   std::to_string(kLongestName) + " bytes";
    if (bundle.stringForInfoDictionaryKey("NSPrincipalClass").value_or("").empty())
        return "Info.plist has no NSPrincipalClass";
    if (!bundle.executablePath())
        return "Info.plist has no CFBundleExecutable";
    const PropertyList* abi = bundle.infoDictionary()->find(kMenuExtraABIKey);
    const auto number = abi ? abi->integer() : std::nullopt;
    if (!number)
        return std::string("Info.plist has no number for ") + kMenuExtraABIKey;
    if (*number != kMenuExtraABI)
        return "it is for ABI " + std::to_string(*number) + ", the bar has " +
               std::to_string(kMenuExtraABI);
    return {};
}

std::string reasonAgainstCode(const std::string& executable) {
    const auto& loader = dynamicLoader();
    const auto architectures = loader.executableArchitectures(executable);
    if (architectures.empty())
        return "no executable code in " + executable;
    const int host = loader.hostArchitecture();
    if (std::find(architectures.begin(), architectures.end(), host) == architectures.end())
        return "code for another processor (" + std::to_string(architectures.front()) + ") in " +
               executable;
    return {};
}

JudgedBundle refused(std::string reason) {
    JudgedBundle result;
    result.reason = std::move(reason);
    return result;
}

} // namespace

JudgedBundle judgeBundle(const std::string& path) {
    std::string reason;
    const auto bundle = Bundle::bundleWithPath(path, &reason);
    if (!bundle || !bundle->infoDictionary())
        return refused(reason);
    if (reason = reasonAgainstInfo(*bundle); !reason.empty())
        return refused(reason);
    const std::string executable = *bundle->executablePath();
    if (reason = reasonAgainstFiles(path, executable); !reason.empty())
        return refused(reason);
    if (reason = reasonAgainstCode(executable); !reason.empty())
        return refused(reason);
    return {bundle,
            *bundle->bundleIdentifier(),
            executable,
            *bundle->stringForInfoDictionaryKey("NSPrincipalClass"),
            {}};
}

} // namespace apps
