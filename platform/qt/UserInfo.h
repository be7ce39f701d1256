#pragma once

#include "platform/values/PropertyList.h"

#include <optional>
#include <string>
#include <string_view>

namespace platform::qt {

/// Decodes the user information of a notification from another program, which is an XML property
/// list whose root is a dictionary. Returns std::nullopt and sets @p reason, human-readable, if
/// @p text is anything else.
std::optional<PropertyList::Dictionary> decodeUserInfo(std::string_view text, std::string& reason);

} // namespace platform::qt
