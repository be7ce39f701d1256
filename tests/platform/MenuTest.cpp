#include "platform/widgets/Menu.h"

#include "platform/values/Event.h"
#include "platform/widgets/MenuExtra.h"
#include "tests/support/Fakes.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

using namespace platform;

namespace {

class Target final : public MenuTarget {
  public:
    bool allows = true;
    bool validateMenuItem(const MenuItem&) override { return allows; }
};

TEST(MenuItem, IsEnabledIfItHasASubmenuOrAnActionThatItsTargetAllows) {
    int done = 0;
    const auto action = [&](MenuItem&) { ++done; };
    auto target = std::make_shared<Target>();
    MenuItem withTarget("x", action, target);
    MenuItem withSubmenu("x");
    withSubmenu.setSubmenu(std::make_shared<Menu>());

    EXPECT_TRUE(withSubmenu.isEnabled());
    EXPECT_FALSE(withSubmenu.perform()) << "a submenu is not an action";
    EXPECT_FALSE(MenuItem("x").isEnabled());
    EXPECT_FALSE(MenuItem::sectionHeader("x")->isEnabled());
    MenuItem withView("x");
    withView.setView(std::make_shared<MenuExtraView>());
    EXPECT_TRUE(withView.isEnabled());

    for (const bool allows : {true, false}) {
        target->allows = allows;
        EXPECT_EQ(withTarget.perform(), allows);
    }
    target.reset();
    EXPECT_FALSE(withTarget.perform()) << "the target has been destroyed";
    EXPECT_EQ(done, 1);
}

TEST(MenuItem, SurvivesAnActionThatReleasesItsTargetAndItsMenu) {
    auto target = std::make_shared<Target>();
    auto menu = std::make_unique<Menu>();
    const std::weak_ptr<Target> watched = target;
    const auto release = [&](MenuItem&) {
        target.reset();
        EXPECT_FALSE(watched.expired());
        menu.reset();
    };
    menu->addItem("x", release, target);
    EXPECT_TRUE(menu->items().front()->perform());
    EXPECT_TRUE(watched.expired());
}

/// Counts the calls of a menu.
class Display final : public MenuDisplay {
  public:
    int changes = 0;
    int itemChanges = 0;
    int dismissals = 0;
    void itemsChanged() override { ++changes; }
    void itemChanged(const MenuItem&) override { ++itemChanges; }
    void dismiss() override { ++dismissals; }
};

TEST(Menu, InsertsFindsAndRemovesItems) {
    Menu menu;
    Display display;
    menu.addDisplay(display);
    const auto a = std::make_shared<MenuItem>("a");
    const auto b = std::make_shared<MenuItem>("b");
    b->setIdentifier("second");
    menu.addItem(a);
    menu.insertItem(b, 1);
    menu.insertItem(MenuItem::separatorItem(), 0);
    EXPECT_EQ(menu.indexOfItem(*b), 2U);
    EXPECT_EQ(menu.itemWithIdentifier("second"), b);
    EXPECT_EQ(menu.itemWithIdentifier("third"), nullptr);
    for (const auto& [item, index] :
         {std::pair(a, 0U), {nullptr, 0U}, {std::make_shared<MenuItem>("c"), 4U}})
        EXPECT_THROW(menu.insertItem(item, index), Exception);
    EXPECT_EQ(display.changes, 3);
    EXPECT_TRUE(menu.removeItem(*a));
    EXPECT_FALSE(menu.removeItem(*a));
    EXPECT_EQ(menu.indexOfItem(*a), std::nullopt);
    EXPECT_EQ(display.changes, 4);
    menu.dismiss();
    menu.removeDisplay(display);
    menu.removeAllItems();
    menu.dismiss();
    EXPECT_EQ(display.dismissals, 1);
    EXPECT_EQ(display.changes, 4);
}

TEST(MenuItem, ReportsEachChangeOnce) {
    const auto image = std::make_shared<test::BlankImage>(1, 1);
    const auto view = std::make_shared<MenuExtraView>();
    const auto submenu = std::make_shared<Menu>();
    MenuItem item("x");
    Display display;
    item.addDisplay(display);
    int expected = 0;
    for (const std::function<void()>& change : std::vector<std::function<void()>>{
             [&] { item.setTitle("y"); }, [&] { item.setSubtitle("s"); },
             [&] { item.setTrailingText("t"); }, [&] { item.setToolTip("u"); },
             [&] { item.setImage(image); }, [&] { item.setTrailingImage(image); },
             [&] {
                 item.setShortcut(KeyShortcut{Key::None, "k", kControlKeyMask});
             },
             [&] { item.setState(MenuItem::State::Mixed); }, [&] { item.setIndentationLevel(99); },
             [&] { item.setHidden(true); }, [&] { item.setAlternateModifiers(kOptionKeyMask); },
             [&] { item.setSubmenu(submenu); }, [&] { item.setView(view); },
             [&] { item.setView(view, MenuItem::ViewStyle::FillsWidth); }}) {
        change();
        EXPECT_EQ(display.itemChanges, ++expected);
        change();
        EXPECT_EQ(display.itemChanges, expected);
    }
    EXPECT_EQ(item.indentationLevel(), 15);
}

} // namespace
