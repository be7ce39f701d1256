#include "platform/Bundle.h"
#include "tests/menuextras/MenuExtraTree.h"

#include <functional>

using test::Lines;
using testing::IsEmpty;
using Tools = HalvexMenuExtraTools;

namespace {

namespace fs = std::filesystem;

class MenuExtraInstall : public test::MenuExtraTree {
  protected:
    /// As this process has opened the installed copy when it looked at its version.
    void installOpened(const std::string& version) {
        install("X.menu", version);
        ASSERT_TRUE(platform::Bundle::bundleWithPath(D));
    }
    void empty() {
        myDebug = 0;
        fs::remove_all(F);
        fs::remove_all(tree.place(P));
        fs::create_directories(F);
        files.readOnly = files.unreadable = files.undeletable = files.uncopyable = {};
        workspace.recycled.clear();
    }

    const std::string D = F + "/X.menu";
    const std::string S = P + "/X.menu";
};

struct Case {
    const char* name;
    std::function<void()> arrange;
    bool result;
    Lines lines;
    std::string version; ///< the installed one afterwards, empty for none
};

TEST_F(MenuExtraInstall, InstallsOrSaysWhyNot) {
    const Case cases[] = {
        {"folder not writable",
         [&] { files.readOnly = {F}; },
         false,
         {"installMenuExtra: no write access to install Menu Extra at F"},
         ""},
        {"source missing",
         [&] {
             fs::remove_all(tree.place(S));
             install("X.menu", "1");
         },
         false,
         {"installMenuExtra: source P/X.menu missing"},
         "1"},
        {"fresh", [] {}, true, {"installed MenuExtra F/X.menu"}, "2"},
        {"fresh, verbose", [] { myDebug = 1; }, true, {"installed MenuExtra F/X.menu"}, "2"},
        {"copy fails",
         [&] { files.uncopyable = {S}; },
         false,
         {"failed to install MenuExtra F/X.menu"},
         ""},
        {"a link to nothing in the way", [&] { fs::create_symlink("nowhere", D); }, true, {}, "2"},
        {"old copy opened before",
         [&] { installOpened("1"); },
         true,
         {"replacing MenuExtra (V1) at F/X.menu"},
         "2"},
        {"old copy opened before, verbose",
         [&] {
             installOpened("1");
             myDebug = 1;
         },
         true,
         {"replacing MenuExtra (V1) at F/X.menu", "copying MenuExtra to F/X.menu"},
         "2"},
        {"old copy cannot be deleted",
         [&] {
             install("X.menu", "1");
             files.undeletable = {D};
         },
         true,
         {"error removing old MenuExtra at F/X.menu",
          "installMenuExtra already installed at F/X.menu"},
         "1"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        empty();
        ship("X.menu", "2");
        c.arrange();
        EXPECT_EQ(Tools::installMenuExtra(S), c.result);
        EXPECT_EQ(lines(), c.lines);
        EXPECT_TRUE(isInstalled("X.menu", c.version));
    }
}

TEST_F(MenuExtraInstall, TellsTheVersionOfNoCopyThatThisProcessHasNotOpened) {
    ship("X.menu", "2");
    install("X.menu", "1");
    EXPECT_TRUE(Tools::installMenuExtra(S));
    EXPECT_EQ(lines(), Lines());
    EXPECT_TRUE(isInstalled("X.menu", "2"));
}

TEST_F(MenuExtraInstall, LosesNothingToAPathThatNamesTheInstalledFolderOrACopyInIt) {
    install("X.menu", "1");
    install("X.menu/Contents/PlugIns/X.menu", "1");
    for (const std::string& path : {D, D + "/", D + "/Contents/PlugIns/X.menu"}) {
        EXPECT_TRUE(Tools::installMenuExtra(path));
        EXPECT_EQ(lines(), Lines{"installMenuExtra already installed at F/X.menu"}) << path;
    }
    for (const std::string path : {"", "/", "..", "a/..", ".", "/tmp/."}) {
        EXPECT_FALSE(Tools::installMenuExtra(path));
        EXPECT_FALSE(Tools::removeMenuExtra(path));
        EXPECT_EQ(lines(), (Lines{"installMenuExtra: source " + path + " missing",
                                  "removeMenuExtra: no menu extra is named by " + path}));
    }
    EXPECT_TRUE(isInstalled("X.menu", "1"));
}

TEST_F(MenuExtraInstall, RemovesTheInstalledCopyAndNothingElse) {
    const Case cases[] = {
        {"removed", [&] { install("X.menu", "1"); }, true, {}, ""},
        {"missing", [] {}, false, {}, ""},
        {"not writable",
         [&] {
             install("X.menu", "1");
             files.readOnly = {D};
         },
         false,
         {"removeMenuExtra: no write access to F/X.menu"},
         "1"},
        {"folder not writable",
         [&] {
             install("X.menu", "1");
             files.readOnly = {F};
         },
         false,
         {"removeMenuExtra: no write access to F/X.menu"},
         "1"},
        {"missing, folder not writable", [&] { files.readOnly = {F}; }, false, {}, ""},
        {"to the Trash",
         [&] {
             install("X.menu", "1");
             files.undeletable = {D};
             workspace.recycles = true;
         },
         true,
         {"Moved to trash Halvex file: F/X.menu"},
         "1"},
        {"not even to the Trash",
         [&] {
             install("X.menu", "1");
             files.undeletable = {D};
             workspace.recycles = false;
         },
         false,
         {"Moved to trash Halvex file: F/X.menu"},
         "1"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        empty();
        ship("X.menu", "2");
        c.arrange();
        const Lines recycled = files.undeletable.empty() ? Lines() : Lines{D};
        EXPECT_EQ(Tools::removeMenuExtra(S), c.result);
        EXPECT_EQ(lines(), c.lines);
        EXPECT_TRUE(isInstalled("X.menu", c.version));
        EXPECT_EQ(workspace.recycled, recycled);
        EXPECT_TRUE(tree.exists(S)) << "the shipped one is never touched";
    }
}

TEST_F(MenuExtraInstall, UpgradesATagWhenTheVersionsDifferAtAll) {
    const std::string name = "HalvexASMMenu.menu";
    const auto info = [](const std::string& path) { return path + "/Contents/Info.plist"; };
    const auto changing = [](const std::string& versions) {
        return "Halvex Pro: Changing versions of Menu Extra (logout required): " + versions;
    };
    const std::string replacing = "replacing MenuExtra (V2.1) at F/" + name;
    const Case cases[] = {
        {"older shipped", [] {}, true, {changing("2.1 != 2.0"), replacing}, "2.0"},
        {"equal", [&] { ship(name, "2.1"); }, false, {}, "2.1"},
        {"not installed", [&] { fs::remove_all(F + '/' + name); }, false, {}, ""},
        {"not shipped", [&] { fs::remove_all(tree.place(P)); }, false, {}, "2.1"},
        {"installed unreadable", [&] { files.unreadable = {F + '/' + name}; }, false, {}, "2.1"},
        {"shipped unreadable", [&] { files.unreadable = {P + '/' + name}; }, false, {}, "2.1"},
        {"shipped without a dictionary",
         [&] { fs::remove(info(tree.place(P + '/' + name))); },
         false,
         {},
         "2.1"},
        {"install fails",
         [&] { files.readOnly = {F}; },
         true,
         {changing("2.1 != 2.0"), "installMenuExtra: no write access to install Menu Extra at F"},
         "2.1"},
        {"neither has a version",
         [&] {
             for (const std::string& path : {F + '/' + name, tree.place(P + '/' + name)})
                 std::ofstream(info(path)) << "<plist><dict/></plist>";
             files.readOnly = {F};
         },
         true,
         {changing("(null) != (null)"),
          "installMenuExtra: no write access to install Menu Extra at F"},
         "?"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        empty();
        ship(name, "2.0");
        install(name, "2.1");
        c.arrange();
        EXPECT_EQ(Tools::DoUpgradeIfNeeded(2), c.result);
        EXPECT_EQ(lines(), c.lines);
        EXPECT_TRUE(c.version == "?" || isInstalled(name, c.version));
    }
}

TEST_F(MenuExtraInstall, UpgradesThreeTagsAndThenClearsTheObsoleteOnesAway) {
    const std::pair<const char*, const char*> obsolete[] = {
        {"HalvexMenu.menu", Halvex2MenuID},
        {"hxASMMenu.menu", Halvex2ASMid},
        {"qvCalendarMenu.menu", HalvexProOldCalMenuID}};
    for (const char* name :
         {"HalvexTimeMenu.menu", "HalvexASMMenu.menu", "HalvexDateCalMenu.menu"}) {
        ship(name, "2");
        install(name, "2");
    }
    for (const auto& [file, identifier] : obsolete) {
        install(file, "1");
        bar.loaded.push_back(identifier);
    }
    EXPECT_FALSE(Tools::DoUpgradeIfNeeded());
    EXPECT_EQ(requests(), Lines());
    EXPECT_TRUE(isInstalled("HalvexMenu.menu", "1"));
    EXPECT_EQ(lines(), Lines());

    install("HalvexTimeMenu.menu", "1");
    install("HalvexDateCalMenu.menu", "1");
    bar.loaded = {HalvexProOldCalMenuID, Halvex2MenuID};
    files.undeletable = {F + "/qvCalendarMenu.menu"};
    EXPECT_TRUE(Tools::DoUpgradeIfNeeded());
    EXPECT_TRUE(isInstalled("HalvexTimeMenu.menu", "2"));
    EXPECT_TRUE(isInstalled("HalvexDateCalMenu.menu", "2")) << "the second upgrade comes as well";
    EXPECT_TRUE(isInstalled("hxASMMenu.menu", ""));
    EXPECT_EQ(requests(), (Lines{"remove com.quorvanesoftware.HalvexMenu2 0",
                                 "remove com.quorvanesoftware.HalvexCalMenu 0"}));
    const Lines all = lines();
    EXPECT_EQ(Lines(all.end() - 3, all.end()),
              (Lines{"removed old MenuExtra at F/HalvexMenu.menu",
                     "removed old MenuExtra at F/hxASMMenu.menu",
                     "error removing old MenuExtra at F/qvCalendarMenu.menu"}));
    EXPECT_EQ(all.size(), 7U) << "two upgrades with two lines each";
}

TEST_F(MenuExtraInstall, TakesOldAndNewGenerationsOutOfTheBarInTheirOrder) {
    const Lines second{Halvex2MenuID, HalvexTodoID, Halvex2ASMid, HalvexProOldCalMenuID};
    const Lines current{HalvexMenuID, HalvexTimeOnlyMenuID, HalvexProCalMenuID, HalvexASMid};
    const auto removals = [](const Lines& identifiers) {
        Lines result;
        for (const std::string& identifier : identifiers)
            result.push_back("remove " + identifier + " 0");
        return result;
    };
    bar.loaded = current;
    EXPECT_FALSE(Tools::isHalvexV2Running());
    bar.loaded.insert(bar.loaded.end(), second.rbegin(), second.rend());
    bar.asked.clear();
    EXPECT_TRUE(Tools::isHalvexV2Running());
    EXPECT_EQ(bar.asked, (Lines{Halvex2MenuID, HalvexTodoID, HalvexProOldCalMenuID, Halvex2ASMid}));
    Tools::HalvexV2Remove();
    EXPECT_EQ(requests(), removals(second));
    Tools::HalvexProRemove();
    EXPECT_EQ(requests(), removals(current));
    Tools::HalvexV2Remove();
    EXPECT_THAT(requests(), IsEmpty());
    EXPECT_EQ(lines(), Lines()) << "nothing that is not loaded is asked to go";
}

} // namespace
