#include "apps/menubar/BundleValidator.h"
#include "platform/DynamicLoader.h"
#include "platform/TrustedFile.h"
#include "tests/fuzz/Support.h"

#include <gnu/libc-version.h>

namespace fs = std::filesystem;
using fuzz::require;

namespace {

/// A bundle whose code is named "Code" and valid, without Info.plist.
struct TestBundle {
    TestBundle() {
        fs::create_directories(code.parent_path());
        const auto anyFunction = reinterpret_cast<const void*>(&gnu_get_libc_version);
        fs::copy_file(platform::dynamicLoader().fileOfAddress(anyFunction), code);
    }

    const fuzz::Program program;
    const fs::path path = program.folder.path() / "Test.menu";
    const fs::path code = path / "Contents/Linux/Code";
};

} // namespace

// Any Info.plist is either refused with a reason or describes code inside the bundle.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const TestBundle bundle;
    bundle.program.folder.write("Test.menu/Contents/Info.plist", fuzz::text(data, size));
    const auto result = apps::validateBundle(bundle.path);
    require(bool(result) == result.reason.empty(), "refused without a reason");
    if (!result)
        return 0;
    require(result.code->path() == bundle.code, "the code is outside of the bundle");
    require(!result.identifier.empty() && result.identifier.size() <= 255 &&
                !result.principalClass.empty() &&
                result.bundle->version().value_or("").size() <= 255,
            "a name is missing or too long");
    return 0;
}
