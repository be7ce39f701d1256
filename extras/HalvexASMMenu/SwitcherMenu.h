#pragma once

#include "extras/HalvexASMMenu/Favourites.h"
#include "platform/Applications.h"
#include "platform/widgets/Menu.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace switcher {

/// The menu of the switcher: the running applications in order of use, the favourites that are not
/// running, and what can be done with all of them. Main thread only.
///
/// Choosing an application activates it. While Option is held, choosing it also hides the others;
/// while Control is held, it asks the application to quit. An application with several windows has
/// them in a submenu.
class SwitcherMenu : platform::NonCopyable {
  public:
    /// The actions run only while @p target exists.
    SwitcherMenu(Favourites& favourites, std::weak_ptr<platform::MenuTarget> target);

    const std::shared_ptr<platform::Menu>& menu() const { return menu_; }
    /// Fills the menu with applications in order of use.
    void refill();
    /// Brings an open menu up to date. Applications keep their places, so that none moves under
    /// the pointer; new ones come last.
    void update();

  private:
    using Item = std::shared_ptr<platform::MenuItem>;

    /// The entries of a running application, of which the menu shows one.
    struct ApplicationRow {
        Item activate;
        Item showOnly; ///< while Option is held
        Item quit;     ///< while Control is held
        std::shared_ptr<platform::Menu> windows = std::make_shared<platform::Menu>();
        std::map<std::uint64_t, Item> windowItems{};
    };
    struct FavouriteRow {
        Item launch;
        Item remove; ///< while Control is held
    };
    using Running = std::vector<platform::RunningApplication>;

    std::shared_ptr<platform::Image> iconOf(const std::string& identifier);
    Item entry(platform::MenuItem::Action action) const;
    Item alternate(std::uint32_t modifiers, platform::MenuItem::Action action) const;
    ApplicationRow makeRow(const std::string& identifier) const;
    FavouriteRow makeFavouriteRow(const std::string& identifier);
    Item makeWindowItem(std::uint64_t window) const;

    void arrange(const Running& running);
    void show(const platform::RunningApplication& application, const std::string& subtitle);
    void showWindows(ApplicationRow& row, const platform::RunningApplication& application) const;
    void addApplications(std::vector<Item>& items, const Running& running);
    void addFavourites(std::vector<Item>& items, const Running& running);
    void addCommands(std::vector<Item>& items, const Running& running);

    Favourites& favourites_;
    const std::weak_ptr<platform::MenuTarget> target_;
    const std::shared_ptr<platform::Menu> menu_ = std::make_shared<platform::Menu>();
    std::vector<std::string> order_; ///< of the running applications in the menu
    std::map<std::string, ApplicationRow> rows_;
    std::map<std::string, FavouriteRow> favouriteRows_;
    std::string active_; ///< the identifier of the active application, if it has a desktop entry
    std::shared_ptr<platform::Image> plainIcon_; ///< for applications without one
    Item notice_;
    Item favouritesHeader_;
    Item addFavourite_;
    Item removeFavourite_;
    Item hideOthers_;
    Item showAll_;
    const Item favouritesSeparator_ = platform::MenuItem::separatorItem();
    const Item commandsSeparator_ = platform::MenuItem::separatorItem();
};

} // namespace switcher
