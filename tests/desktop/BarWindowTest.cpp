#include "apps/menubar/BarWindow.h"

#include "apps/menubar/BarMenu.h"
#include "apps/menubar/ItemWidget.h"
#include "menubar/HalvexMenuExtraBase.h"
#include "platform/qt/Desktop.h"
#include "platform/qt/QtMenu.h"
#include "tests/support/Fakes.h"
#include "tests/support/RecordingLog.h"

#include <QAccessible>
#include <QApplication>
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

TEST(BarWindow, RequestsTheMenuOnARightClickOnly) {
    apps::BarWindow window;
    std::vector<int> requests;
    QObject::connect(&window, &apps::BarWindow::menuRequested,
                     [&](int x) { requests.push_back(x); });
    for (const auto button : {Qt::LeftButton, Qt::MiddleButton, Qt::RightButton})
        QTest::mouseClick(&window, button, {}, {50, 10});
    EXPECT_EQ(requests, std::vector{50});
}

TEST(BarMenu, OpensAboutAndIsClosedByIt) {
    platform::qt::install();
    const test::RecordingLog log;
    apps::BarMenu menu;
    EXPECT_EQ(menu.openMenu(), nullptr);
    menu.open({200, 0, 1, 22});
    ASSERT_NE(menu.openMenu(), nullptr);
    const auto actions = menu.openMenu()->actions();
    EXPECT_FALSE(actions.front()->isEnabled()) << "there is no preference pane";
    EXPECT_EQ(actions.back()->text(), "Quit");
    QTest::keyClick(menu.openMenu(), Qt::Key_Down);
    QTest::keyClick(menu.openMenu(), Qt::Key_Return);
    EXPECT_EQ(menu.openMenu(), nullptr);
    QWidget* about = nullptr;
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (widget->isVisible() && widget->windowTitle() == "About the Menu Bar")
            about = widget;
    ASSERT_NE(about, nullptr);
    ASSERT_TRUE(QTest::qWaitForWindowActive(about));
    QTest::keyClick(about, Qt::Key_Escape);
    EXPECT_FALSE(about->isVisible());
}

class BarWindowDirection : public testing::TestWithParam<Qt::LayoutDirection> {};
INSTANTIATE_TEST_SUITE_P(BarWindow, BarWindowDirection,
                         testing::Values(Qt::LeftToRight, Qt::RightToLeft));

TEST_P(BarWindowDirection, IsAMenuBarWithItsVisibleItemsFromLeftToRight) {
    auto& graphics = platform::qt::install();
    const test::RecordingHost host;
    apps::BarWindow window;
    window.setLayoutDirection(GetParam());
    const bool isMirrored = GetParam() == Qt::RightToLeft;
    std::vector<std::unique_ptr<apps::ItemWidget>> items;
    std::vector<apps::ItemWidget*> firstToLast;
    for (const auto& [name, length] :
         {std::pair("first", 20.0F), {"hidden", 0.0F}, {"second", 30.0F}}) {
        const auto extra = std::make_shared<platform::MenuExtra>();
        extra->initWithBundle(std::make_shared<platform::Bundle>(
            "/Test.menu", platform::PropertyList::Dictionary{{"CFBundleName", name}}));
        extra->setLength(length);
        items.push_back(std::make_unique<apps::ItemWidget>(name, extra, graphics, &window));
        firstToLast.push_back(items.back().get());
    }
    window.placeItems(firstToLast);
    const QRect first = items[0]->geometry(), second = items[2]->geometry();
    EXPECT_EQ(isMirrored ? first.left() : window.width() - 1 - first.right(), 4);
    EXPECT_EQ(isMirrored ? second.left() - first.right() : first.left() - second.right(), 1);
    QAccessibleInterface* bar = QAccessible::queryAccessibleInterface(&window);
    EXPECT_EQ(bar->role(), QAccessible::MenuBar);
    ASSERT_EQ(bar->childCount(), 2);
    for (const auto& [index, name] :
         {std::pair(isMirrored ? 1 : 0, "second"), {isMirrored ? 0 : 1, "first"}}) {
        EXPECT_EQ(bar->child(index)->text(QAccessible::Name), name);
        EXPECT_EQ(bar->child(index)->parent(), bar);
        EXPECT_EQ(bar->indexOfChild(bar->child(index)), index);
    }
    EXPECT_EQ(bar->child(2), nullptr);
}

} // namespace
