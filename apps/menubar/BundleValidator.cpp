#include "apps/menubar/BundleValidator.h"

#include "platform/DynamicLoader.h"
#include "platform/base/PathStrings.h"
#include "platform/widgets/MenuExtraPlugIn.h"

#include <utility>

using namespace platform;

namespace apps {
namespace {

constexpr std::size_t kMaxNameLength = 255; // bytes; keeps a note in the crash journal short

/// Returns why the bundle is refused, or an empty string.
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

ValidatedBundle refused(std::string reason) {
    ValidatedBundle result;
    result.reason = std::move(reason);
    return result;
}

} // namespace

ValidatedBundle validateBundle(const std::string& path) {
    std::string reason;
    // First of all, so that no other user can replace what is read afterwards.
    const std::string info = appendingPathComponent(path, "Contents/Info.plist");
    if (!TrustedFile::open(info, reason))
        return refused(reason);
    const auto bundle = Bundle::bundleWithPath(path, &reason);
    if (!bundle || !bundle->infoDictionary())
        return refused(reason);
    if (reason = infoError(*bundle); !reason.empty())
        return refused(reason);
    auto code = TrustedFile::open(*bundle->executablePath(), reason);
    if (code)
        reason = dynamicLoader().refusalReason(*code);
    if (!reason.empty())
        return refused(reason);
    return {bundle,
            *bundle->bundleIdentifier(),
            std::move(code),
            *bundle->stringForInfoDictionaryKey("NSPrincipalClass"),
            {}};
}

} // namespace apps
