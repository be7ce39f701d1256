#include "tests/menuextras/MenuExtraTree.h"

using Tools = HalvexMenuExtraTools;

namespace {

using MenuExtraCatalogue = test::MenuExtraTree;

TEST_F(MenuExtraCatalogue, KnowsNineTagsByIdentifierAndFile) {
    const std::tuple<std::int32_t, const char*, std::string> known[] = {
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
    for (const std::int32_t tag : {0, 7, -1}) {
        EXPECT_EQ(Tools::menuExtraPaths(tag), std::nullopt);
        EXPECT_EQ(Tools::menuExtraInstalledPaths(tag), std::nullopt);
        EXPECT_EQ(log(), "error tag not set\nerror tag not set") << tag;
    }
}

} // namespace
