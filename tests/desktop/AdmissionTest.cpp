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
    for (const std::string& path :
         {std::string(HALVEX_TEST_EXTRA), (folder / "Link.menu").string(),
          copyBundle(HALVEX_TEST_EXTRA, folder / "Folder/TestExtra.menu")}) {
        EXPECT_EQ(bar.add(path), -2) << path;
        EXPECT_TRUE(bar.logs(path + " declined: it is not in " + folder.string()));
    }
    EXPECT_TRUE(bar.loads(installed.string() + '/', kTestExtra)) << bar.log();
    EXPECT_EQ(bar.remove(kOwnClock), 0);
    EXPECT_TRUE(bar.loads(HALVEX_CLOCK, kOwnClock, 0)) << bar.log();

    bar.start({"--admit=all"});
    EXPECT_EQ(bar.remove(kTestExtra), 0);
    EXPECT_TRUE(bar.loads(HALVEX_TEST_EXTRA, kTestExtra)) << bar.log();
}

TEST(Admission, OfKindSystemDeclinesForeignItemsUntilMenuCrackerIsLoaded) {
    BarProcess bar({"--admit=system"});
    const std::string installed = bar.install(HALVEX_TIME_MENU);
    const fs::path inPane = bar.home() / "Some.prefPane/Contents/PlugIns/MenuCracker.menu";
    for (const std::string& path :
         {installed, std::string(HALVEX_MENU_CRACKER), copyBundle(HALVEX_TEST_EXTRA, inPane)}) {
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
