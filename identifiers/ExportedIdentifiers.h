#pragma once

#include <atomic>
#include <cstdint>

/// The identifiers and file names that the product's programs share, and three flags. Each is
/// exported from the shared library under its own name and is initialized when the library loads.
extern "C" {

// Bundle identifiers.
extern const char* const HalvexMenuID;          ///< clock (tag 1)
extern const char* const HalvexASMid;           ///< application switcher (tag 2)
extern const char* const HalvexTodoID;          ///< to-do/calendar (tag 3)
extern const char* const HalvexNetMenuID;       ///< wireless (tag 4)
extern const char* const HalvexProCalMenuID;    ///< date/calendar (tag 5)
extern const char* const HalvexProOldCalMenuID; ///< older calendar (tag 6)
extern const char* const Halvex2MenuID;         ///< second-generation clock (tag 31)
extern const char* const Halvex2ASMid;          ///< second-generation switcher (tag 32)
extern const char* const HalvexTimeOnlyMenuID;  ///< time-only clock (tag 33)
extern const char* const HalvexPrefsBundleID;   ///< preference pane

// Installed preference panes. Expand a leading tilde to the user's home folder.
extern const char* const HalvexProPrefsAllUsers; ///< for all users
extern const char* const HalvexProPrefsAUser;    ///< for one user

// File names of the menu extras.
extern const char* const kHalvexTimeExtraFile;     ///< tag 1
extern const char* const kHalvexProASMFile;        ///< tag 2
extern const char* const kHalvexDateCalExtraFile;  ///< tag 5
extern const char* const kHalvexCalFile;           ///< tag 6
extern const char* const kHalvexExtraFile;         ///< tag 31
extern const char* const kHalvexASMFile;           ///< tag 32
extern const char* const kHalvexTimeOnlyExtraFile; ///< tag 33

// Folder names.
extern const char* const HalvexMenuExtraFolder;  ///< installed menu extras, in the maker folder
extern const char* const quorvaneSoftwareFolder; ///< maker folder, in Application Support
extern const char* const HalvexProSupportFolder; ///< product folder, in the maker folder
extern const char* const themesFolder;           ///< themes

// Data files.
extern const char* const HalvexLocation;             ///< location list
extern const char* const HalvexNetLocations;         ///< net location cache
extern const char* const plistFile;                  ///< file extension of property lists
extern const char* const HalvexRecurringTimers2File; ///< recurring timers
extern const char* const recuringFile;               ///< same value, kept under both names
extern const char* const HalvexStocksFile;           ///< stocks
extern const char* const WarnMeTimesFile;            ///< warning times, without extension
extern const char* const WarnMeTitlesFile;           ///< warning titles, without extension

// Preferences domains and a notification key.
extern const char* const appHalvex4Prefs;     ///< domain of this release
extern const char* const appHalvexPrefsOld;   ///< domain of an older release
extern const char* const hxNSApplicationName; ///< application name in a launch notification

// Flags, initially 0. Each process has its own. Set the first two on the main thread.
// gHalvexisrunning is set on any thread: access it with std::atomic_ref.
extern std::int32_t myDebug;          ///< if not 0, menu extras and HalvexMenuExtraTools log more
extern std::int32_t myDebugME;        ///< if not 0, menu extra views log more
extern std::int32_t gHalvexisrunning; ///< 1 once the background application has been found running

} // extern "C"

namespace identifiers {

/// Returns whether myDebug is set. Thread-safe, including while another thread sets it.
inline bool isVerbose() {
    return std::atomic_ref(myDebug).load(std::memory_order_relaxed) != 0;
}

} // namespace identifiers
