#include "platform/Bundle.h"
#include "tests/menuextras/MenuExtraTree.h"

using platform::Bundle;
using test::kPane;
using Tools = HalvexMenuExtraTools;

namespace {

using MenuExtraCatalogue = test::MenuExtraTree;

TEST_F(MenuExtraCatalogue, KnowsNineTagsByIdentifierAndFile) {
    const struct {
        std::int32_t tag;
        const char* identifier;
        std::string file;
    } known[] = {
        {1, HalvexMenuID, "HalvexTimeMenu.menu"},
        {2, HalvexASMid, "HalvexASMMenu.menu"},
        {3, HalvexTodoID, "hxCALMenuExtra.menu"},
        {4, HalvexNetMenuID, "hxWirelessMenu.menu"},
        {5, HalvexProCalMenuID, "HalvexDateCalMenu.menu"},
        {6, HalvexProOldCalMenuID, "qvCalendarMenu.menu"},
        {31, Halvex2MenuID, "HalvexMenu.menu"},
        {32, Halvex2ASMid, "hxASMMenu.menu"},
        {33, HalvexTimeOnlyMenuID, "HalvexTimeOnlyMenuExtra.menu"},
    };
    for (const auto& [tag, identifier, file] : known) {
        EXPECT_EQ(Tools::menuExtraTagFromID(identifier), tag);
        EXPECT_EQ(Tools::menuExtraPaths(tag), P + '/' + file);
        EXPECT_EQ(Tools::menuExtraInstalledPaths(tag), F + '/' + file);
    }
    EXPECT_EQ(Tools::menuExtraTagFromID("com.quorvanesoftware.halvexpromenu"), -1);
    EXPECT_EQ(log(), "");
}

TEST_F(MenuExtraCatalogue, LogsATagThatThereIsNotUnlessThePaneIsMissingBefore) {
    for (const std::int32_t tag : {0, 7, -1}) {
        EXPECT_EQ(Tools::menuExtraPaths(tag), std::nullopt);
        EXPECT_EQ(Tools::menuExtraInstalledPaths(tag), std::nullopt);
        EXPECT_EQ(log(), "error tag not set\nerror tag not set") << tag;
    }
    std::filesystem::remove_all(tree.place(kPane));
    for (const std::int32_t tag : {7, 1})
        EXPECT_EQ(Tools::menuExtraPaths(tag), std::nullopt);
    EXPECT_EQ(log(), "");
}

TEST_F(MenuExtraCatalogue, TakesTheLoadedPaneThenEverybodysThenTheUsers) {
    const auto loaded = std::make_shared<Bundle>(
        "/Elsewhere/My.prefPane",
        platform::PropertyList::Dictionary{{"CFBundleIdentifier", HalvexPrefsBundleID}});
    const std::string users = "~/Library/PreferencePanes/Halvex Pro.prefPane";
    tree.make(users);
    Bundle::setCode(loaded, Bundle::Code::Loaded);
    EXPECT_EQ(Tools::HalvexPrefsPanelPath(), "/Elsewhere/My.prefPane");
    EXPECT_EQ(Tools::HalvexPrefsPlugins(), "/Elsewhere/My.prefPane/Contents/PlugIns");
    Bundle::setCode(loaded, Bundle::Code::Unloaded);
    EXPECT_EQ(Tools::HalvexPrefsPanelPath(), kPane);
    std::filesystem::remove_all(tree.place(kPane));
    EXPECT_EQ(Tools::HalvexPrefsPlugins(), tree.path(users) + "/Contents/PlugIns");
    std::filesystem::remove_all(tree.place(users));
    EXPECT_EQ(Tools::HalvexPrefsPanelPath(), std::nullopt) << "although it was opened before";
    EXPECT_EQ(Tools::HalvexPrefsPlugins(), std::nullopt);
    EXPECT_EQ(log(), "");
}

} // namespace
