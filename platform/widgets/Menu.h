#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/values/Image.h"
#include "platform/values/Input.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

class Menu;
class MenuExtraView;
class MenuItem;

/// The object that a menu item's action acts on. Decides whether the item is enabled.
class MenuTarget : NonCopyable {
  public:
    virtual ~MenuTarget();

    /// Returns whether @p item is enabled. Called each time the item is shown or performed. The
    /// default is true.
    virtual bool validateMenuItem(const MenuItem& item);
};

/// What shows a menu on the screen. Main thread only.
class MenuDisplay : NonCopyable {
  public:
    virtual ~MenuDisplay();

    /// Called after items have been inserted or removed.
    virtual void itemsChanged() = 0;
    /// Called after @p item has changed.
    virtual void itemChanged(const MenuItem& item) = 0;
    /// Closes the menu, with the menus that it was opened from.
    virtual void dismiss() = 0;
};

/// A key that performs a menu item while the menu is open.
struct KeyShortcut {
    Key key = Key::None;
    std::string character{};         ///< in UTF-8, if the key is None; the case does not matter
    std::uint32_t modifierFlags = 0; ///< the masks of Event.h

    friend bool operator==(const KeyShortcut&, const KeyShortcut&) = default;
};

/// An entry of a menu. Changes are shown immediately if the menu is open. Main thread only.
///
/// An entry shows, from left to right: a mark for its state, its image, its title with the subtitle
/// below, the trailing text and image, its shortcut, and an arrow if it has a submenu. The parts on
/// the right line up with those of the other entries.
class MenuItem : NonCopyable {
  public:
    enum class State { Off, On, Mixed };
    /// How a view is shown.
    enum class ViewStyle {
        Plain,       ///< in its own size
        FillsWidth,  ///< as wide as the menu, but at least in its own width
        Highlighted, ///< the same, on the menu's highlight while the entry is highlighted
    };
    using Action = std::function<void(MenuItem& sender)>;

    /// Creates an item without a target. It is enabled if it has an action.
    explicit MenuItem(std::string title, Action action = {});
    /// Creates an item that is enabled if it has an action and @p target still exists and validates
    /// it. The target is held weakly, and kept alive while the action runs.
    MenuItem(std::string title, Action action, std::weak_ptr<MenuTarget> target);
    /// Creates a separator line.
    static std::shared_ptr<MenuItem> separatorItem();
    /// Creates a title, in small text, for the items that follow. It is disabled.
    static std::shared_ptr<MenuItem> sectionHeader(std::string title);
    ~MenuItem();

    bool isSeparatorItem() const { return kind_ == Kind::Separator; }
    bool isSectionHeader() const { return kind_ == Kind::Header; }
    /// Identifies the item within its menu; never shown. Empty by default.
    const std::string& identifier() const { return identifier_; }
    const std::string& title() const { return title_; }
    const std::string& subtitle() const { return subtitle_; }
    const std::string& trailingText() const { return trailingText_; }
    const std::string& toolTip() const { return toolTip_; }
    const std::shared_ptr<const Image>& image() const { return image_; }
    const std::shared_ptr<const Image>& trailingImage() const { return trailingImage_; }
    const std::optional<KeyShortcut>& shortcut() const { return shortcut_; }
    State state() const { return state_; }
    int indentationLevel() const { return indentationLevel_; }
    bool isHidden() const { return hidden_; }
    std::uint32_t alternateModifiers() const { return alternateModifiers_; }
    const std::shared_ptr<Menu>& submenu() const { return submenu_; }
    const std::shared_ptr<MenuExtraView>& view() const { return view_; }
    ViewStyle viewStyle() const { return viewStyle_; }

    void setIdentifier(std::string identifier) { identifier_ = std::move(identifier); }
    void setTitle(std::string title) { change(title_, std::move(title)); }
    /// Sets a second line in small text.
    void setSubtitle(std::string subtitle) { change(subtitle_, std::move(subtitle)); }
    /// Sets a text on the right, such as a time. Its digits have equal widths.
    void setTrailingText(std::string text) { change(trailingText_, std::move(text)); }
    /// Sets the text to show while the pointer rests on the item.
    void setToolTip(std::string toolTip) { change(toolTip_, std::move(toolTip)); }
    /// Sets the image to the left of the title, or on the right; null removes it. An image of more
    /// than 64 points in width or height is shown smaller.
    void setImage(std::shared_ptr<const Image> image) { change(image_, std::move(image)); }
    void setTrailingImage(std::shared_ptr<const Image> image) {
        change(trailingImage_, std::move(image));
    }
    /// Sets the key that performs the item while the menu is open. The shortcuts of submenus work
    /// too, open or not. If several items have the same one, the first enabled item is performed.
    void setShortcut(std::optional<KeyShortcut> shortcut) { change(shortcut_, shortcut); }
    void setState(State state) { change(state_, state); }
    /// Sets how far the title is indented, from 0 to 15 levels. Other levels are limited to these.
    void setIndentationLevel(int level);
    void setHidden(bool hidden) { change(hidden_, hidden); }
    /// With modifier flags other than 0, makes the item an alternate: it replaces the item before
    /// it while exactly these modifier keys are held. Several alternates may follow an item. Has no
    /// effect if there is no item before it, or if that one or this one has a view.
    void setAlternateModifiers(std::uint32_t flags) { change(alternateModifiers_, flags); }
    /// Sets the submenu that the item opens; null removes it. An item with a submenu is enabled.
    void setSubmenu(std::shared_ptr<Menu> submenu) { change(submenu_, std::move(submenu)); }
    /// Shows a view instead of the title, which screen readers still speak; null removes it. The
    /// menu becomes the view's container while it is open. A click on the view does not close the
    /// menu; see ViewContainer::dismiss. If the user drags from the bar into the menu, the view
    /// receives the drag and the release without a press. Keys that the highlighted view does not
    /// handle have their usual meaning: Return performs the item's action, Escape closes the menu,
    /// and arrow keys move on. If no item is highlighted, the view of the first item receives
    /// keys. @throws Exception (NSInvalidArgumentException) if @p view is the view of an item in
    /// the bar.
    void setView(std::shared_ptr<MenuExtraView> view, ViewStyle style = ViewStyle::Plain);

    bool hasAction() const { return static_cast<bool>(action_); }
    /// Returns whether the item can be chosen: if it has an action, a submenu or a view, and its
    /// target agrees. A submenu needs no agreement.
    bool isEnabled() const;
    /// Calls the action if there is one and the item is enabled. Returns whether it was called.
    /// During the action, EventSource::currentEvent has the modifier keys that were held.
    bool perform();

    /// Returns whether the pointer or the keyboard has selected the item in the open menu.
    bool isHighlighted() const { return highlighted_; }

    // For the code that displays the item.
    void setHighlighted(bool highlighted);
    void addDisplay(MenuDisplay& display) { displays_.push_back(&display); }
    void removeDisplay(MenuDisplay& display) { std::erase(displays_, &display); }

  private:
    enum class Kind { Item, Separator, Header };

    template <class T>
    void change(T& setting, T value) {
        if (setting == value)
            return;
        setting = std::move(value);
        notifyChange();
    }
    void notifyChange() const;

    std::string identifier_;
    std::string title_;
    std::string subtitle_;
    std::string trailingText_;
    std::string toolTip_;
    std::shared_ptr<const Image> image_;
    std::shared_ptr<const Image> trailingImage_;
    std::optional<KeyShortcut> shortcut_;
    Action action_;
    std::weak_ptr<MenuTarget> target_;
    std::shared_ptr<Menu> submenu_;
    std::shared_ptr<MenuExtraView> view_;
    std::vector<MenuDisplay*> displays_;
    std::uint32_t alternateModifiers_ = 0;
    int indentationLevel_ = 0;
    State state_ = State::Off;
    ViewStyle viewStyle_ = ViewStyle::Plain;
    Kind kind_ = Kind::Item;
    bool hasTarget_ = false;
    bool hidden_ = false;
    bool highlighted_ = false;
};

/// A list of menu items. An open menu shows changes immediately. Main thread only.
class Menu : NonCopyable {
  public:
    const std::vector<std::shared_ptr<MenuItem>>& items() const { return items_; }
    /// Returns the first item with @p identifier, or null.
    std::shared_ptr<MenuItem> itemWithIdentifier(std::string_view identifier) const;
    /// Returns std::nullopt if the menu does not contain @p item.
    std::optional<std::size_t> indexOfItem(const MenuItem& item) const;

    /// Appends an item and returns it. @throws Exception (NSInvalidArgumentException) if @p item is
    /// null or already in the menu.
    MenuItem& addItem(std::shared_ptr<MenuItem> item);
    /// Creates an item with a target, appends it and returns it.
    MenuItem& addItem(std::string title, MenuItem::Action action, std::weak_ptr<MenuTarget> target);
    void addSeparator();
    /// Inserts an item before the one at @p index, or at the end if that is the number of items.
    /// @throws Exception (NSInvalidArgumentException) like addItem, or if @p index is larger.
    MenuItem& insertItem(std::shared_ptr<MenuItem> item, std::size_t index);
    /// Removes an item. Returns whether the menu contained it. May be called from its action.
    bool removeItem(const MenuItem& item);
    void removeAllItems();

    /// Closes the menu if it is open, with the menus that it was opened from.
    void dismiss();

    // For the code that displays the menu.
    void addDisplay(MenuDisplay& display) { displays_.push_back(&display); }
    void removeDisplay(MenuDisplay& display) { std::erase(displays_, &display); }

  private:
    void notifyChange() const;

    std::vector<std::shared_ptr<MenuItem>> items_;
    std::vector<MenuDisplay*> displays_;
};

} // namespace platform
