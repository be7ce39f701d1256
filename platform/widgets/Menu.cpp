#include "platform/widgets/Menu.h"

#include "platform/base/Exception.h"

#include <utility>

namespace platform {

MenuTarget::~MenuTarget() = default;

bool MenuTarget::validateMenuItem(const MenuItem&) {
    return true;
}

MenuItem::MenuItem(std::string title, Action action)
    : title_(std::move(title)), action_(std::move(action)) {}

MenuItem::MenuItem(std::string title, Action action, std::weak_ptr<MenuTarget> target)
    : title_(std::move(title)), action_(std::move(action)), target_(std::move(target)),
      hasTarget_(true) {}

MenuItem::~MenuItem() = default;

std::shared_ptr<MenuItem> MenuItem::separatorItem() {
    auto item = std::make_shared<MenuItem>(std::string());
    item->separator_ = true;
    return item;
}

void MenuItem::setTitle(std::string title) {
    if (title == title_)
        return;
    title_ = std::move(title);
    notifyChange();
}

void MenuItem::setState(State state) {
    if (state == state_)
        return;
    state_ = state;
    notifyChange();
}

void MenuItem::setSubmenu(std::shared_ptr<Menu> submenu) {
    submenu_ = std::move(submenu);
}

bool MenuItem::isEnabled() const {
    if (separator_)
        return false;
    if (submenu_)
        return true;
    if (!action_)
        return false;
    if (!hasTarget_)
        return true;
    const auto target = target_.lock();
    return target && target->validateMenuItem(*this);
}

bool MenuItem::perform() {
    if (!action_ || !isEnabled())
        return false;
    // Keeps the target and the action alive while the action runs.
    const auto target = target_.lock();
    const Action action = action_;
    action(*this);
    return true;
}

void MenuItem::notifyChange() const {
    if (changed_)
        changed_();
}

MenuItem& Menu::addItem(std::shared_ptr<MenuItem> item) {
    if (!item)
        throw Exception(kInvalidArgumentException, "a menu item must not be null");
    items_.push_back(std::move(item));
    return *items_.back();
}

MenuItem& Menu::addItem(std::string title, MenuItem::Action action,
                        std::weak_ptr<MenuTarget> target) {
    return addItem(
        std::make_shared<MenuItem>(std::move(title), std::move(action), std::move(target)));
}

void Menu::addSeparator() {
    addItem(MenuItem::separatorItem());
}

} // namespace platform
