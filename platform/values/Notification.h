#pragma once

#include "platform/values/PropertyList.h"

#include <optional>
#include <string>

namespace platform {

/// An event that observers of its name are told about.
struct Notification {
    std::string name;
    std::optional<std::string> object; ///< the sender or subject
    PropertyList::Dictionary userInfo;
};

} // namespace platform
