#pragma once

#include "platform/widgets/Menu.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace extras {

/// What an entry of a menu shows now.
struct MenuRow {
    enum class Kind { Item, Separator, Header };

    /// Unique in the menu. A row with another kind or another action needs another identifier.
    std::string identifier{};
    std::string title{};
    std::string subtitle{};
    std::string trailingText{};
    std::string toolTip{};
    std::shared_ptr<const platform::Image> image{};
    std::shared_ptr<const platform::Image> trailingImage{};
    platform::MenuItem::State state = platform::MenuItem::State::Off;
    std::shared_ptr<platform::Menu> submenu{};
    platform::MenuItem::Action action{}; ///< the row is disabled without one and without a submenu
    Kind kind = Kind::Item;
};

/// Makes @p menu show @p rows. Entries with the identifier of a row are kept, so that an open menu
/// keeps its highlight; the others are removed. Actions act on @p target.
void showRows(platform::Menu& menu, const std::vector<MenuRow>& rows,
              const std::weak_ptr<platform::MenuTarget>& target);

} // namespace extras
