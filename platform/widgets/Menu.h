#pragma once

#include "platform/base/NonCopyable.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace platform {

class Menu;
class MenuItem;

/// Who a menu item's action belongs to; asked before each showing whether the item may be chosen.
class MenuTarget : NonCopyable {
  public:
    virtual ~MenuTarget();

    /// Whether @p item can be chosen now. YES unless a class says otherwise.
    virtual bool validateMenuItem(const MenuItem& item);
};

/// A line of a menu. Main thread.
class MenuItem : NonCopyable {
  public:
    enum class State { Off, On };
    using Action = std::function<void(MenuItem& sender)>;

    /// An item that does @p action. With a target, the item is enabled when the target says so and
    /// is never performed once the target is gone; without one, it is enabled when it has an
    /// action. A title without action is shown disabled.
    explicit MenuItem(std::string title, Action action = {});
    MenuItem(std::string title, Action action, std::weak_ptr<MenuTarget> target);
    /// A line between groups of items.
    static std::shared_ptr<MenuItem> separatorItem();
    ~MenuItem();

    bool isSeparatorItem() const { return separator_; }
    const std::string& title() const { return title_; }
    State state() const { return state_; }
    const std::shared_ptr<Menu>& submenu() const { return submenu_; }

    void setTitle(std::string title);
    void setState(State state);
    /// Makes this an item that opens @p submenu; null takes it away.
    void setSubmenu(std::shared_ptr<Menu> submenu);

    /// Whether it can be chosen now; asks the target.
    bool isEnabled() const;
    /// Does the action when the item is enabled; gives whether it did.
    bool perform();

    /// Who shows the item and wants to hear that its title or state changed: one, or none.
    void setChangeHandler(std::function<void()> handler) { changed_ = std::move(handler); }

  private:
    void tellChange() const;

    std::string title_;
    Action action_;
    std::weak_ptr<MenuTarget> target_;
    std::shared_ptr<Menu> submenu_;
    std::function<void()> changed_;
    State state_ = State::Off;
    bool hasTarget_ = false;
    bool separator_ = false;
};

/// A list of items. Main thread.
class Menu {
  public:
    const std::vector<std::shared_ptr<MenuItem>>& items() const { return items_; }

    /// Appends an item and gives it back. Null raises NSInvalidArgumentException.
    MenuItem& addItem(std::shared_ptr<MenuItem> item);
    MenuItem& addItem(std::string title, MenuItem::Action action, std::weak_ptr<MenuTarget> target);
    void addSeparator();
    void removeAllItems() { items_.clear(); }

  private:
    std::vector<std::shared_ptr<MenuItem>> items_;
};

} // namespace platform
