#include "apps/menubar/BarWindow.h"

#include <QMenu>
#include <QScreen>
#include <QTest>

#include <gtest/gtest.h>

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

} // namespace
