#include "identifiers/ExportedIdentifiers.h"
#include "tests/desktop/support/BarProcess.h"

#include <gmock/gmock.h>

namespace fs = std::filesystem;
using namespace test;
using testing::ElementsAre;

namespace {

constexpr const char* kCracker = "net.sourceforge.menucracker";

TEST(Admission, AdmitsTheBarsOwnItemsAndTheUsersAndDeclinesThoseElsewhere) {
    BarProcess bar;
    const fs::path installed = bar.install(HALVEX_TEST_EXTRA);
    const fs::path folder = installed.parent_path();
    fs::create_directory_symlink(HALVEX_TEST_EXTRA, folder / "Link.menu");
    const std::string elsewhere = copyBundle(HALVEX_TEST_EXTRA, folder / "Folder/TestExtra.menu");
    for (const auto& [path, resolved] :
         {std::pair<std::string, std::string>(HALVEX_TEST_EXTRA, HALVEX_TEST_EXTRA),
          {folder / "Link.menu", HALVEX_TEST_EXTRA},
          {elsewhere, elsewhere}}) {
        EXPECT_EQ(bar.add(path), -2) << path;
        EXPECT_TRUE(bar.logs(resolved + " declined: it is not in " + folder.string()));
    }
    EXPECT_TRUE(bar.loads(installed.string() + '/', kTestExtra)) << bar.log();
    EXPECT_EQ(bar.remove(kOwnClock), 0);
    EXPECT_TRUE(bar.loads(HALVEX_CLOCK, kOwnClock, 0)) << bar.log();

    bar.start({"--admit=all"});
    EXPECT_EQ(bar.remove(kTestExtra), 0);
    EXPECT_TRUE(bar.loads(HALVEX_TEST_EXTRA, kTestExtra)) << bar.log();
}

/// The bar would admit the item through the link at every start, wherever the link leads then.
TEST(Admission, StoresTheResolvedPathOfAnItem) {
    BarProcess bar;
    const fs::path installed = bar.install(HALVEX_TEST_EXTRA);
    fs::create_directory_symlink(installed, bar.home() / "Link.menu");
    EXPECT_TRUE(bar.loads(bar.home() / "Link.menu", kTestExtra)) << bar.log();
    bar.start();
    EXPECT_TRUE(bar.hasLoaded(kTestExtra)) << bar.log();
    const std::string list =
        contents(bar.home() / "Library/Application Support/Quorvane Software/Halvex Pro/"
                              "Menu Bar Items.plist");
    EXPECT_NE(list.find(installed.string()), std::string::npos) << list;
    EXPECT_EQ(list.find("Link.menu"), std::string::npos) << list;
}

TEST(Admission, OfKindSystemDeclinesForeignItemsUntilMenuCrackerIsLoaded) {
    BarProcess bar({"--admit=system"});
    const std::string installed = bar.install(HALVEX_TIME_MENU);
    const fs::path panes = bar.home() / "Library/PreferencePanes";
    const fs::path inPane = panes / "Halvex Pro.prefPane/Contents/PlugIns/MenuCracker.menu";
    const fs::path inOther = panes / "Other.prefPane/Contents/PlugIns/MenuCracker.menu";
    for (const std::string& path :
         {installed, std::string(HALVEX_MENU_CRACKER), copyBundle(HALVEX_MENU_CRACKER, inOther),
          copyBundle(HALVEX_TEST_EXTRA, inPane)}) {
        EXPECT_EQ(bar.add(path), 0) << "the caller is not told";
        EXPECT_TRUE(bar.logs("menu extra at " + path + " declined: the bar admits only its own"));
    }
    EXPECT_THAT(bar.identifiers(), ElementsAre(kOwnClock));

    EXPECT_EQ(bar.add(copyBundle(HALVEX_MENU_CRACKER, inPane), 0), 0);
    EXPECT_TRUE(bar.loads(installed, HalvexMenuID)) << "not waiting for it: " << bar.log();
    EXPECT_EQ(bar.add(HALVEX_TEST_EXTRA), 0);
    EXPECT_TRUE(bar.logs(std::string(HALVEX_TEST_EXTRA) + " declined: it is not in"));
    EXPECT_THAT(bar.identifiers(), ElementsAre(kOwnClock, kCracker, HalvexMenuID));

    bar.start({"--admit=system"});
    EXPECT_THAT(bar.identifiers(), ElementsAre(kOwnClock, kCracker, HalvexMenuID));
    EXPECT_FALSE(bar.click(kCracker)) << "MenuCracker has no menu";
    EXPECT_EQ(bar.stop(), 0) << bar.log();
}

} // namespace
