#include "platform/PropertyListService.h"
#include "platform/qt/UserInfo.h"
#include "tests/fuzz/Support.h"

using fuzz::require;
using platform::qt::decodeUserInfo;

// Any text is either refused with a reason or decoded into a dictionary that another program would
// decode in the same way.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::Program program;
    std::string reason;
    const auto userInfo = decodeUserInfo(fuzz::text(data, size), reason);
    require(bool(userInfo) == reason.empty(), "refused without a reason");
    if (!userInfo)
        return 0;
    const auto sent = platform::propertyLists().serialize(platform::PropertyList(*userInfo));
    require(sent.has_value(), "the user information cannot be sent");
    require(decodeUserInfo(*sent, reason) == userInfo, "the user information is changed");
    return 0;
}
