#pragma once

#include "platform/base/NonCopyable.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace platform {

class Menu;
class MenuItem;

/// The object that a menu item's action acts on. Decides whether the item is enabled.
class MenuTarget : NonCopyable {
  public:
    virtual ~MenuTarget();

    /// Returns whether @p item is enabled. Called each time the item is shown or performed. The
    /// default is true.
    virtual bool validateMenuItem(const MenuItem& item);
};

/// An entry of a menu. Main thread only.
class MenuItem : NonCopyable {
  public:
    enum class State { Off, On };
    using Action = std::function<void(MenuItem& sender)>;

    /// Creates an item without a target. It is enabled if it has an action.
    explicit MenuItem(std::string title, Action action = {});
    /// Creates an item that is enabled if it has an action and @p target still exists and validates
    /// it. The target is held weakly, and kept alive while the action runs.
    MenuItem(std::string title, Action action, std::weak_ptr<MenuTarget> target);
    /// Creates a separator line.
    static std::shared_ptr<MenuItem> separatorItem();
    ~MenuItem();

    bool isSeparatorItem() const { return separator_; }
    const std::string& title() const { return title_; }
    State state() const { return state_; }
    const std::shared_ptr<Menu>& submenu() const { return submenu_; }

    void setTitle(std::string title);
    void setState(State state);
    /// Sets the submenu that the item opens; null removes it. An item with a submenu is enabled.
    void setSubmenu(std::shared_ptr<Menu> submenu);

    bool isEnabled() const;
    /// Calls the action if there is one and the item is enabled. Returns whether it was called.
    bool perform();

    /// Sets the handler to call after the title or state changes, replacing the previous one. Used
    /// by the code that displays the item.
    void setChangeHandler(std::function<void()> handler) { changed_ = std::move(handler); }

  private:
    void notifyChange() const;

    std::string title_;
    Action action_;
    std::weak_ptr<MenuTarget> target_;
    std::shared_ptr<Menu> submenu_;
    std::function<void()> changed_;
    State state_ = State::Off;
    bool hasTarget_ = false;
    bool separator_ = false;
};

/// A list of menu items. Main thread only.
class Menu {
  public:
    const std::vector<std::shared_ptr<MenuItem>>& items() const { return items_; }

    /// Appends an item and returns it. @throws Exception (NSInvalidArgumentException) for null.
    MenuItem& addItem(std::shared_ptr<MenuItem> item);
    /// Creates an item with a target, appends it and returns it.
    MenuItem& addItem(std::string title, MenuItem::Action action, std::weak_ptr<MenuTarget> target);
    void addSeparator();
    void removeAllItems() { items_.clear(); }

  private:
    std::vector<std::shared_ptr<MenuItem>> items_;
};

} // namespace platform
