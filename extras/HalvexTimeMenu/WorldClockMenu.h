#pragma once

#include "extras/clock/WorldClocks.h"
#include "platform/base/Watch.h"
#include "platform/values/Image.h"
#include "platform/widgets/Menu.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <vector>

/// The world clocks in the clock's menu, in list order below a section header: the first 20
/// directly in the menu, the others in a submenu. Choosing one copies its name and time. Main
/// thread only.
class WorldClockMenu {
  public:
    /// Appends the header to @p menu, which shows the clocks from now on. Actions have @p target.
    WorldClockMenu(std::shared_ptr<platform::Menu> menu,
                   std::weak_ptr<platform::MenuTarget> target);

    /// Replaces the entries with those of @p clocks, without times.
    void setClocks(extras::WorldClocks& clocks);
    /// Shows the times, unless they are still those of the last call; those in the submenu soon
    /// after it.
    void update(std::int64_t now);
    /// Replaces the symbols of day and night with those of the current theme at the next update.
    void reloadSymbols();
    /// Returns false for the entry of a location without a usable zone.
    bool isUsable(const platform::MenuItem& item) const { return !unusable_.contains(&item); }

  private:
    struct Row {
        extras::WorldClock clock;
        std::shared_ptr<platform::MenuItem> item;
    };

    /// What the texts depend on.
    struct Moment {
        std::int64_t minute;
        std::int32_t localOffset;
        friend bool operator==(const Moment&, const Moment&) = default;
    };

    std::shared_ptr<platform::MenuItem> makeItem(const extras::WorldClock& clock);
    void insert(const std::shared_ptr<platform::MenuItem>& item);
    void updateOthers(std::int64_t now);
    void updateRow(const Row& row, std::int64_t now);
    const std::shared_ptr<platform::Image>& symbol(bool isDay);

    const std::shared_ptr<platform::Menu> menu_;
    const std::weak_ptr<platform::MenuTarget> target_;
    const std::shared_ptr<platform::MenuItem> header_;
    std::vector<std::shared_ptr<platform::MenuItem>> entries_; ///< those in the menu itself
    std::vector<Row> rows_;
    std::set<const platform::MenuItem*> unusable_;
    std::unique_ptr<platform::Watch> othersTimer_;
    std::optional<Moment> shown_;
    std::shared_ptr<platform::Image> blank_;
    std::shared_ptr<platform::Image> sun_;
    std::shared_ptr<platform::Image> moon_;
};
