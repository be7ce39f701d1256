#include "platform/qt/UserInfo.h"

#include "platform/PropertyListService.h"

namespace platform::qt {

std::optional<PropertyList::Dictionary> decodeUserInfo(std::string_view text, std::string& reason) {
    const auto parsed = propertyLists().parse(text);
    if (parsed && parsed.value->dictionary())
        return *parsed.value->dictionary();
    reason = parsed ? "its user information is not a dictionary" : parsed.error.reason;
    return std::nullopt;
}

} // namespace platform::qt
