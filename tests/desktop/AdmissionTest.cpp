#include "menuextras/ExportedIdentifiers.h"
#include "tests/desktop/support/BarProcess.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace fs = std::filesystem;
using test::BarProcess;
using testing::ElementsAre;

namespace {

constexpr const char* kOwnClock = "com.apple.menuextra.clock";
constexpr const char* kTestExtra = "test.extra";
constexpr const char* kCracker = "net.sourceforge.menucracker";

/// Puts a bundle among the plug-ins of a preference pane, under the loader's name.
std::string putIntoPane(const BarProcess& bar, const std::string& bundle) {
    const fs::path plugIns = bar.home() / "Some.prefPane/Contents/PlugIns";
    fs::create_directories(plugIns);
    fs::remove_all(plugIns / "MenuCracker.menu");
    fs::copy(bundle, plugIns / "MenuCracker.menu", fs::copy_options::recursive);
    return (plugIns / "MenuCracker.menu").string();
}

bool loads(BarProcess& bar, const char* identifier) {
    return BarProcess::eventually([&] { return bar.reference(identifier) != 0; });
}

TEST(Admission, IsForTheBarsOwnItemsAndTheUsersAndRefusesWhatLiesElsewhere) {
    BarProcess bar;
    const fs::path installed = bar.install(HALVEX_TEST_EXTRA);
    const fs::path link = installed.parent_path() / "Link.menu";
    const fs::path below = installed.parent_path() / "Folder/TestExtra.menu";
    fs::create_directory_symlink(HALVEX_TEST_EXTRA, link);
    fs::create_directory(below.parent_path());
    fs::copy(HALVEX_TEST_EXTRA, below, fs::copy_options::recursive);
    for (const std::string& path :
         {std::string(HALVEX_TEST_EXTRA), link.string(), below.string()}) {
        EXPECT_EQ(bar.add(path), -2) << path;
        EXPECT_TRUE(bar.logs("menu extra at " + path + " declined: it does not lie in " +
                             installed.parent_path().string()));
    }
    EXPECT_THAT(bar.identifiers(), ElementsAre(kOwnClock));

    EXPECT_EQ(bar.add(installed.string() + '/'), 0);
    EXPECT_TRUE(loads(bar, kTestExtra)) << bar.log();
    bar.call("RemoveMenuExtra", {bar.reference(kOwnClock), 0});
    EXPECT_EQ(bar.add(HALVEX_CLOCK, 0), 0);
    EXPECT_TRUE(loads(bar, kOwnClock)) << bar.log();

    bar.stop();
    bar.start({"--admit=all"});
    bar.call("RemoveMenuExtra", {bar.reference(kTestExtra), 0});
    EXPECT_EQ(bar.add(HALVEX_TEST_EXTRA), 0);
    EXPECT_TRUE(loads(bar, kTestExtra)) << bar.log();
}

TEST(Admission, OfTheSystemsKindWaitsForMenuCracker) {
    BarProcess bar({"--admit=system"});
    const std::string installed = bar.install(HALVEX_TIME_MENU);
    const std::string declined[] = {installed, HALVEX_MENU_CRACKER,
                                    putIntoPane(bar, HALVEX_TEST_EXTRA)};
    for (const std::string& path : declined) {
        EXPECT_EQ(bar.add(path), 0) << "it does not tell";
        EXPECT_TRUE(bar.logs("menu extra at " + path + " declined: this bar admits its own"))
            << path;
    }
    EXPECT_THAT(bar.identifiers(), ElementsAre(kOwnClock));

    EXPECT_EQ(bar.add(putIntoPane(bar, HALVEX_MENU_CRACKER), 0), 0);
    EXPECT_EQ(bar.add(installed), 0) << "asked for without waiting";
    EXPECT_TRUE(loads(bar, HalvexMenuID)) << bar.log();
    EXPECT_EQ(bar.add(HALVEX_TEST_EXTRA), 0);
    EXPECT_TRUE(bar.logs(std::string(HALVEX_TEST_EXTRA) + " declined: it does not lie in"));
    EXPECT_THAT(bar.identifiers(), ElementsAre(kOwnClock, kCracker, HalvexMenuID));

    bar.stop();
    bar.start({"--admit=system"});
    EXPECT_THAT(bar.identifiers(),
                testing::UnorderedElementsAre(kOwnClock, kCracker, HalvexMenuID));
    EXPECT_FALSE(bar.click(kCracker)) << "there is no menu to open";
    EXPECT_EQ(bar.stop(), 0) << bar.log();
}

} // namespace
