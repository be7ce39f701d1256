#pragma once

#include <cstdint>
#include <span>
#include <string>

/// What the operations of HalvexMenuExtraTools share among themselves.
namespace menuextras {

/// The identifier of the clock that the bar itself ships.
inline constexpr const char* kSystemClockID = "com.apple.menuextra.clock";
/// The identifier of the item that lets third-party items into a bar that admits only its own.
inline constexpr const char* kMenuCrackerID = "net.sourceforge.menucracker";

/// Whether an operation knows a tag.
enum class Knows { No, Yes };

struct MenuExtraKind {
    std::int32_t tag;
    std::string identifier;
    std::string fileName;
    Knows loadedTest; ///< isHalvexExtraLoaded
    Knows toggle;     ///< menuExtraToggle
};

/// The product's nine.
std::span<const MenuExtraKind> allKinds();
/// Null for a tag that there is not.
const MenuExtraKind* kindOfTag(std::int32_t tag);

/// The folder of the installed menu extras, made when it is missing.
std::string installedFolder();

} // namespace menuextras
