#include "platform/widgets/Menu.h"

#include "platform/base/Exception.h"
#include "platform/widgets/MenuExtra.h"

#include <algorithm>
#include <utility>

namespace platform {

MenuTarget::~MenuTarget() = default;
MenuDisplay::~MenuDisplay() = default;

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
    item->kind_ = Kind::Separator;
    return item;
}

std::shared_ptr<MenuItem> MenuItem::sectionHeader(std::string title) {
    auto item = std::make_shared<MenuItem>(std::move(title));
    item->kind_ = Kind::Header;
    return item;
}

void MenuItem::setIndentationLevel(int level) {
    change(indentationLevel_, std::clamp(level, 0, 15));
}

void MenuItem::setView(std::shared_ptr<MenuExtraView> view, ViewStyle style) {
    if (view && view->owner())
        throw Exception(kInvalidArgumentException, "the view belongs to an item in the bar");
    if (view == view_ && style == viewStyle_)
        return;
    view_ = std::move(view);
    viewStyle_ = style;
    notifyChange();
}

bool MenuItem::isEnabled() const {
    if (kind_ != Kind::Item)
        return false;
    if (submenu_)
        return true;
    if (!action_ && !view_)
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

void MenuItem::setHighlighted(bool highlighted) {
    if (highlighted == highlighted_)
        return;
    highlighted_ = highlighted;
    if (view_)
        view_->setNeedsDisplay(true);
}

void MenuItem::notifyChange() const {
    for (MenuDisplay* display : displays_)
        display->itemChanged(*this);
}

std::shared_ptr<MenuItem> Menu::itemWithIdentifier(std::string_view identifier) const {
    const auto found = std::find_if(items_.begin(), items_.end(), [&](const auto& item) {
        return item->identifier() == identifier;
    });
    return found == items_.end() ? nullptr : *found;
}

std::optional<std::size_t> Menu::indexOfItem(const MenuItem& item) const {
    const auto found = std::find_if(items_.begin(), items_.end(),
                                    [&](const auto& other) { return other.get() == &item; });
    if (found == items_.end())
        return std::nullopt;
    return static_cast<std::size_t>(found - items_.begin());
}

MenuItem& Menu::addItem(std::shared_ptr<MenuItem> item) {
    return insertItem(std::move(item), items_.size());
}

MenuItem& Menu::addItem(std::string title, MenuItem::Action action,
                        std::weak_ptr<MenuTarget> target) {
    return addItem(
        std::make_shared<MenuItem>(std::move(title), std::move(action), std::move(target)));
}

void Menu::addSeparator() {
    addItem(MenuItem::separatorItem());
}

MenuItem& Menu::insertItem(std::shared_ptr<MenuItem> item, std::size_t index) {
    if (!item)
        throw Exception(kInvalidArgumentException, "a menu item must not be null");
    if (indexOfItem(*item))
        throw Exception(kInvalidArgumentException, "the item is already in the menu");
    if (index > items_.size())
        throw Exception(kInvalidArgumentException, "the index is beyond the end of the menu");
    MenuItem& inserted = *item;
    items_.insert(items_.begin() + static_cast<std::ptrdiff_t>(index), std::move(item));
    notifyChange();
    return inserted;
}

bool Menu::removeItem(const MenuItem& item) {
    const auto index = indexOfItem(item);
    if (!index)
        return false;
    const auto removed = items_[*index]; // destroyed after the displays know
    items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(*index));
    notifyChange();
    return true;
}

void Menu::removeAllItems() {
    const auto removed = std::exchange(items_, {});
    notifyChange();
}

void Menu::dismiss() {
    for (MenuDisplay* display : std::vector(displays_)) {
        // Closing one may have destroyed another.
        if (std::find(displays_.begin(), displays_.end(), display) != displays_.end())
            display->dismiss();
    }
}

void Menu::notifyChange() const {
    for (MenuDisplay* display : displays_)
        display->itemsChanged();
}

} // namespace platform
