#include "apps/menubar/BarWindow.h"

#include "apps/menubar/ItemWidget.h"
#include "menubar/HalvexMenuExtraBase.h"
#include "platform/qt/Desktop.h"
#include "tests/support/Fakes.h"

#include <QAccessible>
#include <QMenu>
#include <QScreen>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>
#include <utility>
#include <vector>

namespace {

TEST(BarWindow, ClosesTheOpenMenusWhenTheScreenChanges) {
    apps::BarWindow window;
    window.show();
    QMenu menu, submenu(&menu);
    menu.addMenu(&submenu)->setText("More");
    submenu.addAction("Nested");
    menu.popup({50, 22});
    submenu.popup({90, 40});
    ASSERT_TRUE(menu.isVisible() && submenu.isVisible());
    QScreen* screen = window.screen();
    emit screen->geometryChanged(screen->geometry());
    EXPECT_FALSE(menu.isVisible() || submenu.isVisible());
}

TEST(BarWindow, IsAMenuBarWithItsVisibleItemsFromLeftToRight) {
    auto& graphics = platform::qt::install();
    const test::RecordingHost host;
    apps::BarWindow window;
    std::vector<std::unique_ptr<apps::ItemWidget>> items;
    std::vector<apps::ItemWidget*> rightmostFirst;
    for (const auto& [name, length] :
         {std::pair("right", 20.0F), {"hidden", 0.0F}, {"left", 20.0F}}) {
        const auto extra = std::make_shared<platform::MenuExtra>();
        extra->initWithBundle(std::make_shared<platform::Bundle>(
            "/Test.menu", platform::PropertyList::Dictionary{{"CFBundleName", name}}));
        extra->setLength(length);
        items.push_back(std::make_unique<apps::ItemWidget>(name, extra, graphics, &window));
        rightmostFirst.push_back(items.back().get());
    }
    window.placeItems(rightmostFirst);
    QAccessibleInterface* bar = QAccessible::queryAccessibleInterface(&window);
    EXPECT_EQ(bar->role(), QAccessible::MenuBar);
    ASSERT_EQ(bar->childCount(), 2);
    for (const auto& [index, name] : {std::pair(0, "left"), {1, "right"}}) {
        EXPECT_EQ(bar->child(index)->text(QAccessible::Name), name);
        EXPECT_EQ(bar->child(index)->parent(), bar);
        EXPECT_EQ(bar->indexOfChild(bar->child(index)), index);
    }
    EXPECT_EQ(bar->child(2), nullptr);
}

} // namespace
