#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace {

/// Returns the address of a symbol in the shared library, not of a copy in this program.
const void* exported(const char* name) {
    static void* const library = dlopen("libHalvexTools.so.1", RTLD_LAZY);
    EXPECT_NE(library, nullptr) << dlerror();
    return dlsym(library, name);
}

TEST(ExportedIdentifiers, AreExportedUnderTheirNamesWithTheirValues) {
    const std::vector<std::pair<const char*, std::string>> constants{
        {"HalvexMenuID", "com.quorvanesoftware.HalvexProMenu"},
        {"HalvexASMid", "com.quorvanesoftware.HalvexProASM"},
        {"HalvexTodoID", "com.quorvanesoftware.HalvexCAL"},
        {"HalvexNetMenuID", "com.quorvanesoftware.HalvexWireless"},
        {"HalvexProCalMenuID", "com.quorvanesoftware.HalvexDateCalMenu"},
        {"HalvexProOldCalMenuID", "com.quorvanesoftware.HalvexCalMenu"},
        {"Halvex2MenuID", "com.quorvanesoftware.HalvexMenu2"},
        {"Halvex2ASMid", "com.quorvanesoftware.HalvexASM2"},
        {"HalvexTimeOnlyMenuID", "com.quorvanesoftware.HalvexTimeOnlyMenuExtra"},
        {"HalvexPrefsBundleID", "com.quorvanesoftware.prefHalvexPanel"},
        {"HalvexProPrefsAllUsers", "/Library/PreferencePanes/Halvex Pro.prefPane"},
        {"HalvexProPrefsAUser", "~/Library/PreferencePanes/Halvex Pro.prefPane"},
        {"kHalvexTimeExtraFile", "HalvexTimeMenu.menu"},
        {"kHalvexProASMFile", "HalvexASMMenu.menu"},
        {"kHalvexDateCalExtraFile", "HalvexDateCalMenu.menu"},
        {"kHalvexCalFile", "qvCalendarMenu.menu"},
        {"kHalvexExtraFile", "HalvexMenu.menu"},
        {"kHalvexASMFile", "hxASMMenu.menu"},
        {"kHalvexTimeOnlyExtraFile", "HalvexTimeOnlyMenuExtra.menu"},
        {"HalvexMenuExtraFolder", "Menu Extras"},
        {"quorvaneSoftwareFolder", "Quorvane Software"},
        {"HalvexProSupportFolder", "Halvex Pro"},
        {"themesFolder", "Themes"},
        {"HalvexLocation", "Halvex Locations"},
        {"HalvexNetLocations", "Halvex Net Locations.plist"},
        {"plistFile", "plist"},
        {"HalvexRecurringTimers2File", "HalvexRecurringTimers2"},
        {"recuringFile", "HalvexRecurringTimers2"},
        {"HalvexStocksFile", "Halvex Stocks"},
        {"WarnMeTimesFile", "WarnMeTimes"},
        {"WarnMeTitlesFile", "WarningTitles"},
        {"appHalvex4Prefs", "com.quorvanesoftware.HalvexPro"},
        {"appHalvexPrefsOld", "com.lumiquay.Halvex"},
        {"hxNSApplicationName", "NSApplicationName"},
    };
    for (const auto& [name, value] : constants) {
        ASSERT_NE(exported(name), nullptr) << name;
        EXPECT_EQ(*static_cast<const char* const*>(exported(name)), value) << name;
    }
    for (const char* flag : {"myDebug", "myDebugME", "gHalvexisrunning"}) {
        ASSERT_NE(exported(flag), nullptr) << flag;
        EXPECT_EQ(*static_cast<const std::int32_t*>(exported(flag)), 0) << flag;
    }
}

} // namespace
