#pragma once

#include "extras/HalvexTimeMenu/WarningPanel.h"
#include "extras/HalvexTimeMenu/WarningTexts.h"
#include "platform/Preferences.h"
#include "platform/base/Watch.h"
#include "platform/widgets/Menu.h"
#include "warnings/BackgroundKeeper.h"
#include "warnings/WarningKeeper.h"
#include "warnings/WarningStore.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// The submenu "Warnings" of the clock. It lists the warnings that are set, with the time left or
/// the time of day; choosing one clears it, and an entry restores what was cleared last. Below,
/// each time from the user's list opens the user's titles to set a warning, and a panel takes
/// others.
///
/// Rings the warnings, together with the background application, which it starts if warnings are
/// set. Does nothing before the first frame. Destroy it in willUnload. Main thread only.
class WarningsMenu : platform::NonCopyable {
  public:
    /// @p clockSettings are the preferences of the clock. Actions have @p target. @p startKeeper
    /// starts the background application unless it is running.
    WarningsMenu(platform::Preferences clockSettings, std::weak_ptr<platform::MenuTarget> target,
                 std::function<void()> startKeeper = warnings::startBackgroundKeeper);
    ~WarningsMenu();

    /// Returns the entry with the submenu, for the clock's menu. Always the same instance.
    const std::shared_ptr<platform::MenuItem>& item() const { return item_; }

    /// Reads the lists and the warnings. The host calls it before its menu opens.
    void menuWillOpen();
    /// Shows the times at @p now. The host calls it every second while its menu is open.
    void update(std::int64_t now);

  private:
    warnings::WarningStore& store();
    void start();
    void keep();
    void readLists();
    void rebuild();
    void addSet();
    void addRestore();
    void addTimes();
    std::shared_ptr<platform::Menu> titlesFor(const warnings::WarningTime& time);
    void addEntry(platform::Menu& menu, const std::string& title, std::function<void()> action);
    bool set(const std::string& title, const warnings::WarningTime& time);
    void clear(std::vector<warnings::Warning> warnings);
    void restore();
    std::vector<warnings::Warning> restorable() const;
    void showPanel(const std::string& time);

    const std::weak_ptr<platform::MenuTarget> target_;
    const std::function<void()> startKeeper_;
    const extras::WarningTexts texts_;
    const std::shared_ptr<platform::MenuItem> item_;
    const std::shared_ptr<platform::Menu> menu_;

    std::unique_ptr<warnings::WarningStore> store_;
    std::unique_ptr<warnings::WarningKeeper> keeper_;
    std::unique_ptr<WarningPanel> panel_;
    std::unique_ptr<platform::Watch> startTimer_;
    std::vector<std::unique_ptr<platform::Watch>> listWatches_;

    bool hasLists_ = false;
    bool hasFailed_ = false; ///< the last change could not be saved
    std::vector<warnings::WarningTime> times_;
    std::vector<std::string> titles_;
    std::optional<std::vector<warnings::Warning>> shown_; ///< in the menu
    std::vector<warnings::Warning> cleared_;              ///< last
};
