#include "platform/posix/ApplicationBundle.h"

#include "platform/Bundle.h"
#include "platform/base/PathStrings.h"

namespace platform::posix {

bool isApplicationBundle(const std::string& path) {
    return pathExtension(path) == "app";
}

std::optional<std::string> applicationBundleOf(const std::string& program) {
    const std::string code = deletingLastPathComponent(program);
    const std::string contents = deletingLastPathComponent(code);
    std::string bundle = deletingLastPathComponent(contents);
    const bool inBundle = lastPathComponent(code) == "Linux" &&
                          lastPathComponent(contents) == "Contents" && isApplicationBundle(bundle);
    return inBundle ? std::optional(std::move(bundle)) : std::nullopt;
}

std::string applicationName(const std::string& bundle) {
    const auto opened = Bundle::bundleWithPath(bundle);
    if (const auto name =
            opened ? opened->stringForInfoDictionaryKey("CFBundleName") : std::nullopt)
        return *name;
    const std::string folder = lastPathComponent(bundle);
    return folder.substr(0, folder.rfind('.'));
}

} // namespace platform::posix
