#include "platform/Bundle.h"
#include "tests/menuextras/MenuExtraTree.h"

using platform::Bundle;
using test::kPane;
using test::kUsersPane;
using test::Lines;
using Tools = HalvexMenuExtraTools;

namespace {

using MenuExtraCatalogue = test::MenuExtraTree;

struct Known {
    std::int32_t tag;
    const char* identifier;
    const char* file;
};
constexpr Known kKnown[] = {
    {1, "com.quorvanesoftware.HalvexProMenu", "HalvexTimeMenu.menu"},
    {2, "com.quorvanesoftware.HalvexProASM", "HalvexASMMenu.menu"},
    {3, "com.quorvanesoftware.HalvexCAL", "hxCALMenuExtra.menu"},
    {4, "com.quorvanesoftware.HalvexWireless", "hxWirelessMenu.menu"},
    {5, "com.quorvanesoftware.HalvexDateCalMenu", "HalvexDateCalMenu.menu"},
    {6, "com.quorvanesoftware.HalvexCalMenu", "qvCalendarMenu.menu"},
    {31, "com.quorvanesoftware.HalvexMenu2", "HalvexMenu.menu"},
    {32, "com.quorvanesoftware.HalvexASM2", "hxASMMenu.menu"},
    {33, "com.quorvanesoftware.HalvexTimeOnlyMenuExtra", "HalvexTimeOnlyMenuExtra.menu"},
};

TEST_F(MenuExtraCatalogue, KnowsNineTagsByIdentifierAndFile) {
    for (const auto& [tag, identifier, file] : kKnown) {
        EXPECT_EQ(Tools::menuExtraTagFromID(identifier), tag);
        EXPECT_EQ(Tools::menuExtraPaths(tag), P + '/' + file);
        EXPECT_EQ(Tools::menuExtraInstalledPaths(tag), F + '/' + file);
    }
    for (const char* other : {"com.quorvanesoftware.halvexpromenu", "", "HalvexProMenu"})
        EXPECT_EQ(Tools::menuExtraTagFromID(other), -1) << other;
    EXPECT_EQ(lines(), Lines());
}

TEST_F(MenuExtraCatalogue, LogsATagThatThereIsNotUnlessThePaneIsMissingBefore) {
    for (const std::int32_t tag : {0, 7, 30, 34, -1}) {
        EXPECT_EQ(Tools::menuExtraPaths(tag), std::nullopt);
        EXPECT_EQ(Tools::menuExtraInstalledPaths(tag), std::nullopt);
        EXPECT_EQ(lines(), Lines(2, "error tag not set")) << tag;
    }
    std::filesystem::remove_all(tree.place(kPane));
    EXPECT_EQ(Tools::menuExtraPaths(7), std::nullopt);
    EXPECT_EQ(Tools::menuExtraPaths(1), std::nullopt);
    EXPECT_EQ(lines(), Lines());
}

TEST_F(MenuExtraCatalogue, TakesTheLoadedPaneThenEverybodysThenTheUsers) {
    const auto loaded = std::make_shared<Bundle>(
        "/Elsewhere/My.prefPane",
        platform::PropertyList::Dictionary{{"CFBundleIdentifier", HalvexPrefsBundleID}});
    tree.make(kUsersPane);
    Bundle::setCode(loaded, Bundle::Code::Loaded);
    EXPECT_EQ(Tools::HalvexPrefsPanelPath(), "/Elsewhere/My.prefPane");
    EXPECT_EQ(Tools::HalvexPrefsPlugins(), "/Elsewhere/My.prefPane/Contents/PlugIns");
    Bundle::setCode(loaded, Bundle::Code::Unloaded);
    EXPECT_EQ(Tools::HalvexPrefsPanelPath(), kPane);
    std::filesystem::remove_all(tree.place(kPane));
    EXPECT_EQ(Tools::HalvexPrefsPlugins(), tree.path(kUsersPane) + "/Contents/PlugIns");
    std::filesystem::remove_all(tree.place(kUsersPane));
    EXPECT_EQ(Tools::HalvexPrefsPanelPath(), std::nullopt) << "although it was opened before";
    EXPECT_EQ(Tools::HalvexPrefsPlugins(), std::nullopt);
    EXPECT_EQ(lines(), Lines());
}

} // namespace
