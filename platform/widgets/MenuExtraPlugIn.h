#pragma once

#include "platform/MenuExtraHost.h"
#include "platform/widgets/MenuExtra.h"

#include <cstdint>
#include <string_view>

namespace platform {

/// What the bar and an item's bundle have to agree on. The number stands in Info.plist under
/// kMenuExtraABIKey and at the end of the entry point's name, and grows whenever a class in
/// MenuExtraHost.h changes its layout or its virtual operations.
inline constexpr std::int64_t kMenuExtraABI = 2;
inline constexpr const char* kMenuExtraABIKey = "HalvexMenuExtraABI";
inline constexpr const char* kMenuExtraEntryPoint = "HalvexMenuExtraEntry_2";

/// Makes an item of the class that the bundle's NSPrincipalClass names, not yet initialised and
/// the caller's own; null when the bundle has no such class. Main thread.
using MenuExtraEntryPoint = MenuExtra* (*)(const char* principalClass);

} // namespace platform

/// Stands once in a bundle's code and makes Class its principal class.
// NOLINTBEGIN(bugprone-macro-parentheses): a class is not to be put in parentheses.
#define HALVEX_MENU_EXTRA(Class)                                                                   \
    extern "C" platform::MenuExtra* HalvexMenuExtraEntry_2(const char* principalClass) {           \
        return std::string_view(principalClass) == #Class ? new Class : nullptr;                   \
    }
// NOLINTEND(bugprone-macro-parentheses)
