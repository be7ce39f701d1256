#pragma once

#include <atomic>
#include <cstdint>

/// The names that all of the product's programs share, spelled here and nowhere else, and three
/// flags. Each is visible in the shared object under its own name. All are in place as soon as the
/// library is loaded.
extern "C" {

// Bundle identifiers.
extern const char* const HalvexMenuID;          ///< main clock (tag 1)
extern const char* const HalvexASMid;           ///< application-switcher (tag 2)
extern const char* const HalvexTodoID;          ///< to-do/calendar (tag 3)
extern const char* const HalvexNetMenuID;       ///< wireless (tag 4)
extern const char* const HalvexProCalMenuID;    ///< date/calendar (tag 5)
extern const char* const HalvexProOldCalMenuID; ///< older calendar (tag 6)
extern const char* const Halvex2MenuID;         ///< second-generation clock (tag 31)
extern const char* const Halvex2ASMid;          ///< second-generation switcher (tag 32)
extern const char* const HalvexTimeOnlyMenuID;  ///< time-only (tag 33)
extern const char* const HalvexPrefsBundleID;   ///< preference pane

// Where the preference pane is installed. A leading tilde is the user's home folder: expand it.
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
extern const char* const
    HalvexMenuExtraFolder; ///< holds the installed menu extras, in the maker's folder
extern const char* const quorvaneSoftwareFolder; ///< the maker's, in Application Support
extern const char* const HalvexProSupportFolder; ///< the product's, in the maker's folder
extern const char* const themesFolder;           ///< themes folder

// Data files.
extern const char* const HalvexLocation;             ///< location list file
extern const char* const HalvexNetLocations;         ///< net location cache file
extern const char* const plistFile;                  ///< the property-list file extension
extern const char* const HalvexRecurringTimers2File; ///< recurring timers file
extern const char* const recuringFile;     ///< the same value; both names are kept on purpose
extern const char* const HalvexStocksFile; ///< stocks file
extern const char* const WarnMeTimesFile;  ///< warning times file
extern const char* const WarnMeTitlesFile; ///< warning titles file

// Preferences domains, and a key of notifications.
extern const char* const appHalvex4Prefs;     ///< this release's
extern const char* const appHalvexPrefsOld;   ///< an older release's
extern const char* const hxNSApplicationName; ///< application name in a launch notification

// Flags, 0 at first; whoever likes may set them, on the main thread. Each process has its own.
extern std::int32_t myDebug;          ///< when not 0, menu extras and their management log more
extern std::int32_t myDebugME;        ///< when not 0, the views of menu extras log more
extern std::int32_t gHalvexisrunning; ///< set while the background application is known to run

} // extern "C"

/// Whether myDebug is not 0. From any thread, also while another sets it.
inline bool isVerbose() {
    return std::atomic_ref(myDebug).load(std::memory_order_relaxed) != 0;
}
