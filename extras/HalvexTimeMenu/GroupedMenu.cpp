#include "extras/HalvexTimeMenu/GroupedMenu.h"

#include "extras/shared/Texts.h"

#include <algorithm>
#include <span>

using platform::Menu;
using platform::MenuItem;

namespace {

constexpr std::size_t kMostInOneMenu = 30;
constexpr std::size_t kGroupSize = 25;

} // namespace

void appendGrouped(Menu& menu, const std::vector<std::shared_ptr<MenuItem>>& items) {
    if (items.size() <= kMostInOneMenu) {
        for (const auto& item : items)
            menu.addItem(item);
        return;
    }
    std::span rest(items);
    while (!rest.empty()) {
        const auto group = rest.first(std::min(kGroupSize, rest.size()));
        rest = rest.subspan(group.size());
        const auto submenu = std::make_shared<Menu>();
        for (const auto& item : group)
            submenu->addItem(item);
        const std::string name =
            extras::fill("%1 – %2", {group.front()->title(), group.back()->title()});
        menu.addItem(std::make_shared<MenuItem>(name)).setSubmenu(submenu);
    }
}
