#pragma once

#include "extras/clock/WorldClocks.h"
#include "platform/base/Watch.h"
#include "platform/widgets/Menu.h"

#include <memory>
#include <vector>

/// The submenu with which users change their list of locations: which of them are in the bar, and
/// cities to add and to remove. While the list is empty, contains the cities to add. Main thread
/// only.
class LocationMenu {
  public:
    /// Appends the entry with the submenu to @p menu. Actions have @p target.
    LocationMenu(platform::Menu& menu, std::weak_ptr<platform::MenuTarget> target);

    /// Shows the user's locations and the cities to add soon after the call, when the menu is on
    /// the screen. @p clocks must outlive this object.
    void setClocks(extras::WorldClocks& clocks);

  private:
    void showCities();
    void showInBar(const std::vector<paths::WorldLocation>& locations);
    void showRemovable(const std::vector<paths::WorldLocation>& locations);

    const std::weak_ptr<platform::MenuTarget> target_;
    const std::shared_ptr<platform::MenuItem> entry_;
    const std::shared_ptr<platform::Menu> edit_ = std::make_shared<platform::Menu>();
    const std::shared_ptr<platform::Menu> cities_ = std::make_shared<platform::Menu>();
    const std::shared_ptr<platform::MenuItem> inBar_; ///< in edit_, as the next one
    const std::shared_ptr<platform::MenuItem> remove_;
    std::unique_ptr<platform::Watch> timer_;
    bool hasCities_ = false;
};
