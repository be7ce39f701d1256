#include "platform/widgets/Menu.h"

#include <gtest/gtest.h>

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

} // namespace
