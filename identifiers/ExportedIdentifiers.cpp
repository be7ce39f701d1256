#include "identifiers/ExportedIdentifiers.h"

const char* const HalvexMenuID = "com.quorvanesoftware.HalvexProMenu";
const char* const HalvexASMid = "com.quorvanesoftware.HalvexProASM";
const char* const HalvexTodoID = "com.quorvanesoftware.HalvexCAL";
const char* const HalvexNetMenuID = "com.quorvanesoftware.HalvexWireless";
const char* const HalvexProCalMenuID = "com.quorvanesoftware.HalvexDateCalMenu";
const char* const HalvexProOldCalMenuID = "com.quorvanesoftware.HalvexCalMenu";
const char* const Halvex2MenuID = "com.quorvanesoftware.HalvexMenu2";
const char* const Halvex2ASMid = "com.quorvanesoftware.HalvexASM2";
const char* const HalvexTimeOnlyMenuID = "com.quorvanesoftware.HalvexTimeOnlyMenuExtra";
const char* const HalvexPrefsBundleID = "com.quorvanesoftware.prefHalvexPanel";

const char* const HalvexProPrefsAllUsers = "/Library/PreferencePanes/Halvex Pro.prefPane";
const char* const HalvexProPrefsAUser = "~/Library/PreferencePanes/Halvex Pro.prefPane";

const char* const kHalvexTimeExtraFile = "HalvexTimeMenu.menu";
const char* const kHalvexProASMFile = "HalvexASMMenu.menu";
const char* const kHalvexDateCalExtraFile = "HalvexDateCalMenu.menu";
const char* const kHalvexCalFile = "qvCalendarMenu.menu";
const char* const kHalvexExtraFile = "HalvexMenu.menu";
const char* const kHalvexASMFile = "hxASMMenu.menu";
const char* const kHalvexTimeOnlyExtraFile = "HalvexTimeOnlyMenuExtra.menu";

const char* const HalvexMenuExtraFolder = "Menu Extras";
const char* const quorvaneSoftwareFolder = "Quorvane Software";
const char* const HalvexProSupportFolder = "Halvex Pro";
const char* const themesFolder = "Themes";

const char* const HalvexLocation = "Halvex Locations";
const char* const HalvexNetLocations = "Halvex Net Locations.plist";
const char* const plistFile = "plist";
const char* const HalvexRecurringTimers2File = "HalvexRecurringTimers2";
const char* const recuringFile = "HalvexRecurringTimers2";
const char* const HalvexStocksFile = "Halvex Stocks";
const char* const WarnMeTimesFile = "WarnMeTimes";
const char* const WarnMeTitlesFile = "WarningTitles";

const char* const appHalvex4Prefs = "com.quorvanesoftware.HalvexPro";
const char* const appHalvexPrefsOld = "com.lumiquay.Halvex";
const char* const hxNSApplicationName = "NSApplicationName";

std::int32_t myDebug = 0;
std::int32_t myDebugME = 0;
std::int32_t gHalvexisrunning = 0;
