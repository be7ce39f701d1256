#pragma once

#include <cstdint>
#include <span>
#include <string>

/// The catalogue of menu extras behind HalvexMenuExtraTools.
namespace menuextras {

/// Bundle identifier of the clock that is shipped with the bar.
inline constexpr const char* kSystemClockID = "com.apple.menuextra.clock";
/// Bundle identifier of MenuCracker. While MenuCracker is loaded, a bar started with --admit=system
/// also accepts third-party items.
inline constexpr const char* kMenuCrackerID = "net.sourceforge.menucracker";

/// One of the product's menu extras.
struct MenuExtraKind {
    std::int32_t tag;
    const char* identifier;
    const char* fileName;
    bool isQueryable;  ///< whether isHalvexExtraLoaded accepts the tag
    bool isToggleable; ///< whether menuExtraToggle accepts the tag
};

/// Returns the product's nine menu extras, ordered by tag.
std::span<const MenuExtraKind> allKinds();
/// Returns null for an unknown tag.
const MenuExtraKind* kindOfTag(std::int32_t tag);

/// Returns the folder of the installed menu extras. Creates it if missing.
std::string installedFolder();

} // namespace menuextras
