#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <iterator>
#include <string>
#include <sys/wait.h>
#include <vector>

namespace {

/// The libraries that a shared object asks for by itself, sanitizers left out.
std::vector<std::string> needed(const std::string& object) {
    const test::TemporaryFolder folder;
    const std::string list = folder.file("list");
    const std::string command = "LC_ALL=C readelf --dynamic --wide '" + object +
                                "' | sed -n 's/.*(NEEDED).*\\[\\(.*\\)\\].*/\\1/p'"
                                " | grep -v san.so >" +
                                list;
    EXPECT_EQ(std::system(command.c_str()), 0) << object;
    std::ifstream names(list);
    return {std::istream_iterator<std::string>(names), {}};
}

TEST(HouseRules, TheLibraryAsksForTheStandardLibraryAloneAndItemsForTheLibrary) {
    const auto language =
        testing::AnyOf(testing::StartsWith("libstdc++.so"), testing::StartsWith("libgcc_s.so"),
                       testing::StartsWith("libm.so"), testing::StartsWith("libc.so"),
                       testing::StartsWith("ld-linux"));
    EXPECT_THAT(
        needed(HALVEX_TOOLS),
        testing::AllOf(testing::Contains(testing::StartsWith("libc.so")), testing::Each(language)));
    for (const char* item : {HALVEX_TIME_MENU, HALVEX_MENU_CRACKER, HALVEX_CLOCK})
        EXPECT_THAT(needed(item),
                    testing::AllOf(testing::Contains("libHalvexTools.so.1"),
                                   testing::Each(testing::AnyOf("libHalvexTools.so.1", language))));
}

/// The lines of a folder's sources that match, with their files.
std::string breaches(const std::string& folder, const std::string& pattern, const char* files) {
    const test::TemporaryFolder scratch;
    const std::string command = "cd " HALVEX_SOURCE_FOLDER " && grep -rE '" + pattern + "' " +
                                folder + files + " >" + scratch.file("found");
    const int status = std::system(command.c_str());
    EXPECT_EQ(WIFEXITED(status) && WEXITSTATUS(status) < 2, true) << command;
    return test::contents(scratch.file("found"));
}

TEST(HouseRules, ArrowsPointOneWay) {
    // Neither a toolkit, nor what implements a service, nor a host; nor a word of a system.
    const std::string foreign =
        "^#include (<Q|<xcb|<expat|<CLI|\"platform/(posix|expat|qt)/|\"apps/|\"tests/)|"
        "^#if(n?def)?[ (]*(defined[ (]*)?(__linux__|__unix__|__APPLE__|_WIN32|QT_)";
    const char* everywhere = " --include=*.h --include=*.cpp";
    for (const char* logic : {"menubar", "menuextras", "paths", "prefs", "ui", "extras"})
        EXPECT_EQ(breaches(logic, foreign, everywhere), "");
    EXPECT_EQ(breaches("platform/*.h", foreign, ""), "");
    for (const auto& [folder, headers] :
         {std::pair("platform", "\"(menubar|menuextras|prefs|paths|ui|extras|apps|tests)/"),
          {"platform/posix", "<Q|<xcb|<expat|\"platform/(expat|qt)/"},
          {"platform/expat", "<Q|\"platform/(posix|qt)/"},
          {"apps/ctl", "<Q(Application|Widget|GuiApplication)"}})
        EXPECT_EQ(breaches(folder, std::string("^#include (") + headers + ")", everywhere), "");
}

} // namespace
