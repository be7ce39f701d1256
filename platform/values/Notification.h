#pragma once

#include "platform/values/PropertyList.h"

#include <optional>
#include <string>

namespace platform {

/// A named event that is delivered to the observers registered for its name.
struct Notification {
    std::string name;
    std::optional<std::string> object; ///< the sender or subject
    PropertyList::Dictionary userInfo;
};

} // namespace platform
