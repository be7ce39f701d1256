#include "platform/Bundle.h"
#include "tests/menuextras/MenuExtraTree.h"

using Tools = HalvexMenuExtraTools;

namespace {

namespace fs = std::filesystem;

struct Case {
    std::string shipped, installed; ///< versions; empty: no such bundle
    std::string refused;            ///< see RefusingFiles
    bool result;
    std::string log;
    std::string after; ///< the installed version afterwards
};

class MenuExtraInstall : public test::MenuExtraTree {
  protected:
    void arrange(const Case& c, const std::string& file = "X.menu") {
        fs::remove_all(F);
        fs::remove_all(tree.systemPath(P));
        fs::create_directories(F);
        if (!c.shipped.empty())
            ship(file, c.shipped);
        if (!c.installed.empty())
            install(file, c.installed);
        const auto path = c.refused.find(' ') + 1;
        const std::string& folder = c.refused.substr(path, 1) == "F" ? F : P;
        tree.files.refused = {
            path == 0 ? "" : c.refused.substr(0, path) + folder + c.refused.substr(path + 1)};
    }

    const std::string X = F + "/X.menu";
    const std::string S = P + "/X.menu";
};

TEST_F(MenuExtraInstall, ReplacesTheOldCopyOrLogsWhyNot) {
    const Case cases[] = {
        {"2", "", "write F", false, "installMenuExtra: no write access to install Menu Extra at F",
         ""},
        {"", "1", "", false, "installMenuExtra: source P/X.menu missing", "1"},
        {"2", "", "", true, "installed MenuExtra F/X.menu", "2"},
        {"2", "", "copy P/X.menu", false, "failed to install MenuExtra F/X.menu", ""},
        {"2", "1", "copy P/X.menu", false, "failed to install MenuExtra F/X.menu", ""},
        {"2", "1", "", true, "", "2"}, // its version is not logged: it has not been opened
        {"2", "1", "remove F/X.menu", true,
         "error removing old MenuExtra at F/X.menu\ninstallMenuExtra already installed at F/X.menu",
         "1"},
    };
    for (const Case& c : cases) {
        arrange(c);
        EXPECT_EQ(Tools::installMenuExtra(S), c.result) << c.log;
        EXPECT_EQ(log(), c.log);
        EXPECT_EQ(version("X.menu"), c.after) << c.log;
    }
    for (const std::string more : {"", "\ncopying MenuExtra to F/X.menu"}) {
        arrange({"2", "1", "", {}, {}, {}});
        ASSERT_TRUE(platform::Bundle::bundleWithPath(X)); // reads the old version
        myDebug = more.empty() ? 0 : 1;
        EXPECT_TRUE(Tools::installMenuExtra(S));
        EXPECT_EQ(log(), "replacing MenuExtra (V1) at F/X.menu" + more);
        EXPECT_EQ(version("X.menu"), "2");
    }
    arrange({"2", "1", "copy P/X.menu", {}, {}, {}});
    ASSERT_TRUE(platform::Bundle::bundleWithPath(X));
    EXPECT_FALSE(Tools::installMenuExtra(S));
    EXPECT_EQ(log(), "replacing MenuExtra (V1) at F/X.menu\nfailed to install MenuExtra F/X.menu");
    tree.files.refused.clear();
    for (const std::string& target : {std::string("nowhere"), tree.systemPath(S)}) {
        fs::remove_all(X);
        fs::create_symlink(target, X);
        EXPECT_TRUE(Tools::installMenuExtra(S));
        EXPECT_FALSE(fs::is_symlink(X)) << "a link is replaced like a copy";
        EXPECT_EQ(version("X.menu"), "2");
    }
}

TEST_F(MenuExtraInstall, NeverReplacesACopyThatContainsTheSource) {
    install("X.menu", "1");
    install("X.menu/Contents/PlugIns/X.menu", "1");
    for (const std::string& path : {X, X + "/", X + "/Contents/PlugIns/X.menu"}) {
        EXPECT_TRUE(Tools::installMenuExtra(path));
        EXPECT_EQ(log(), "installMenuExtra already installed at F/X.menu") << path;
    }
    install("X.menu old/X.menu", "2");
    EXPECT_TRUE(Tools::installMenuExtra(F + "/X.menu old/X.menu"));
    EXPECT_EQ(version("X.menu") + log(), "2") << "the source only has a similar path";
}

TEST_F(MenuExtraInstall, RefusesAPathWithoutAName) {
    install("X.menu", "1");
    for (const std::string path : {"", "/", "a/..", "."}) {
        EXPECT_FALSE(Tools::installMenuExtra(path));
        EXPECT_FALSE(Tools::removeMenuExtra(path));
        EXPECT_EQ(log(), "installMenuExtra: source " + path + " missing\n" +
                             "removeMenuExtra: no menu extra name in \"" + path + "\"");
    }
    EXPECT_EQ(version("X.menu"), "1");
}

TEST_F(MenuExtraInstall, RemovesOnlyTheInstalledCopy) {
    const std::string noAccess = "removeMenuExtra: no write access to F/X.menu";
    const std::string trashed = "Moved to trash Halvex file: F/X.menu";
    const Case cases[] = {
        {"2", "1", "", true, "", ""},
        {"2", "", "write F", false, "", ""},
        {"2", "1", "write F", false, noAccess, "1"},
        {"2", "1", "write F/X.menu", false, noAccess, "1"},
        {"2", "1", "remove F/X.menu", true, trashed, "1"}, // and moved to the Trash
        {"2", "1", "remove F/X.menu", false, trashed, "1"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.refused);
        arrange(c);
        workspace.recycles = c.result;
        EXPECT_EQ(Tools::removeMenuExtra(S), c.result);
        EXPECT_EQ(log(), c.log);
        EXPECT_EQ(version("X.menu"), c.after);
        EXPECT_EQ(shown(std::exchange(workspace.recycled, {})), c.log == trashed ? "F/X.menu" : "");
        EXPECT_TRUE(tree.exists(S));
    }
}

TEST_F(MenuExtraInstall, UpgradesACopyWhoseVersionDiffers) {
    const std::string name = "HalvexASMMenu.menu";
    const std::string changing = "Halvex Pro: Changing versions of Menu Extra (logout required): ";
    const std::string noAccess = "\ninstallMenuExtra: no write access to install Menu Extra at F";
    const Case cases[] = {
        {"2.0", "2.1", "", true, changing + "2.1 != 2.0\nreplacing MenuExtra (V2.1) at F/" + name,
         "2.0"},
        {"2.1", "2.1", "", false, "", "2.1"},
        {"2.0", "", "", false, "", ""},
        {"", "2.1", "", false, "", "2.1"},
        {"2.0", "2.1", "read F/" + name, false, "", "2.1"},
        {"2.0", "2.1", "read P/" + name, false, "", "2.1"},
        {"2.0", "2.1", "write F", true, changing + "2.1 != 2.0" + noAccess, "2.1"},
        {"(null)", "(null)", "write F", true, changing + "(null) != (null)" + noAccess, "(null)"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.shipped + ' ' + c.installed + ' ' + c.refused);
        arrange(c, name);
        EXPECT_EQ(Tools::DoUpgradeIfNeeded(2), c.result);
        EXPECT_EQ(log(), c.log);
        EXPECT_EQ(version(name), c.after);
    }
    for (const std::string& folder : {F, tree.systemPath(P)}) {
        arrange({"3", "1", "", {}, {}, {}}, name);
        fs::remove(folder + '/' + name + "/Contents/Info.plist");
        EXPECT_FALSE(Tools::DoUpgradeIfNeeded(2)) << folder << " has no dictionary";
        EXPECT_EQ(log(), "");
    }
}

TEST_F(MenuExtraInstall, RemovesObsoleteMenuExtrasAfterAnUpgrade) {
    const std::vector<std::string> upgradable{"HalvexTimeMenu.menu", "HalvexASMMenu.menu",
                                              "HalvexDateCalMenu.menu"};
    const std::pair<std::string, std::string> others[] = {
        {"hxCALMenuExtra.menu", "1"}, {"hxWirelessMenu.menu", "1"},
        {"qvCalendarMenu.menu", "1"}, {"HalvexTimeOnlyMenuExtra.menu", "1"},
        {"HalvexMenu.menu", ""},      {"hxASMMenu.menu", ""},
    };
    tree.files.refused = {"remove " + F + "/qvCalendarMenu.menu"};
    for (const auto& outdated : {{}, {upgradable[0]}, {upgradable[1]}, upgradable}) {
        SCOPED_TRACE(testing::PrintToString(outdated));
        for (const std::string& file : upgradable) {
            ship(file, "2");
            install(file, std::ranges::count(outdated, file) != 0 ? "1" : "2");
        }
        for (const auto& [file, after] : others) {
            ship(file, "2");
            install(file, "1");
        }
        bar.loaded = {HalvexProOldCalMenuID, Halvex2MenuID, HalvexMenuID};
        EXPECT_EQ(Tools::DoUpgradeIfNeeded(), !outdated.empty());
        for (const std::string& file : upgradable)
            EXPECT_EQ(version(file), "2") << file;
        for (const auto& [file, after] : others)
            EXPECT_EQ(version(file), outdated.empty() ? "1" : after) << file;
        EXPECT_EQ(requests(), outdated.empty() ? ""
                                               : "remove com.quorvanesoftware.HalvexMenu2 0\n"
                                                 "remove com.quorvanesoftware.HalvexCalMenu 0");
        EXPECT_THAT(log(), testing::EndsWith(
                               outdated.empty()
                                   ? ""
                                   : "\nremoved old MenuExtra at F/HalvexMenu.menu\n"
                                     "removed old MenuExtra at F/hxASMMenu.menu\n"
                                     "error removing old MenuExtra at F/qvCalendarMenu.menu"));
    }
    install(upgradable[0], "1");
    EXPECT_TRUE(Tools::DoUpgradeIfNeeded());
    EXPECT_THAT(log(), testing::Not(testing::HasSubstr("hxASMMenu.menu"))) << "already removed";
}

TEST_F(MenuExtraInstall, FindsAndUnloadsEachGenerationSeparately) {
    const std::string prefix = "remove com.quorvanesoftware.Halvex";
    const std::vector<std::string> old{HalvexProOldCalMenuID, Halvex2ASMid, HalvexTodoID,
                                       Halvex2MenuID};
    const std::vector<std::string> current{HalvexMenuID, HalvexTimeOnlyMenuID, HalvexProCalMenuID,
                                           HalvexASMid};
    bar.loaded = current;
    EXPECT_FALSE(Tools::isHalvexV2Running());
    for (const std::string& identifier : old) {
        bar.loaded = {identifier};
        bar.queried.clear();
        EXPECT_TRUE(Tools::isHalvexV2Running()) << identifier;
        EXPECT_THAT(bar.queried, testing::ElementsAre(Halvex2MenuID, HalvexTodoID,
                                                      HalvexProOldCalMenuID, Halvex2ASMid));
    }
    bar.loaded = old;
    bar.loaded.insert(bar.loaded.begin(), current.begin(), current.end());
    Tools::HalvexV2Remove();
    EXPECT_EQ(requests(), prefix + "Menu2 0\n" + prefix + "CAL 0\n" + prefix + "ASM2 0\n" + prefix +
                              "CalMenu 0");
    Tools::HalvexProRemove();
    EXPECT_EQ(requests(), prefix + "ProMenu 0\n" + prefix + "TimeOnlyMenuExtra 0\n" + prefix +
                              "DateCalMenu 0\n" + prefix + "ProASM 0");
    Tools::HalvexV2Remove();
    Tools::HalvexProRemove();
    EXPECT_EQ(requests() + log(), "");
}

} // namespace
