#pragma once

#include "platform/MenuExtraHost.h"
#include "platform/widgets/MenuExtra.h"

#include <cstdint>
#include <string_view>

namespace platform {

/// The version of the binary interface between the bar and an item's bundle. The bundle states it
/// in Info.plist under kMenuExtraABIKey and in the name of its entry point. It increases whenever
/// the layout or the virtual functions of a class that items use change.
inline constexpr std::int64_t kMenuExtraABI = 3;
inline constexpr const char* kMenuExtraABIKey = "HalvexMenuExtraABI";
inline constexpr const char* kMenuExtraEntryPoint = "HalvexMenuExtraEntry_3";

/// Creates an item of the class @p principalClass, the bundle's NSPrincipalClass. The item is not
/// initialized and is owned by the caller. Returns null for an unknown class. Main thread only.
using MenuExtraEntryPoint = MenuExtra* (*)(const char* principalClass);

} // namespace platform

/// The function with the name kMenuExtraEntryPoint, which each bundle defines.
#define HALVEX_MENU_EXTRA_ENTRY HalvexMenuExtraEntry_3
extern "C" platform::MenuExtra* HALVEX_MENU_EXTRA_ENTRY(const char* principalClass);

/// Defines a bundle's entry point, with Class as its principal class. Use it once per bundle.
// NOLINTBEGIN(bugprone-macro-parentheses): a class name cannot be put in parentheses.
#define HALVEX_MENU_EXTRA(Class)                                                                   \
    extern "C" platform::MenuExtra* HALVEX_MENU_EXTRA_ENTRY(const char* principalClass) {          \
        return std::string_view(principalClass) == #Class ? new Class : nullptr;                   \
    }
// NOLINTEND(bugprone-macro-parentheses)
