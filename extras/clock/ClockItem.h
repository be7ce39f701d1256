#pragma once

#include "menubar/HalvexMenuExtraBase.h"
#include "platform/Clock.h"

#include <cstdint>
#include <memory>
#include <string>

namespace extras {

/// A clock in the bar. It updates once a second while its title shows seconds or its menu is open,
/// otherwise once a minute, and whenever the system time or the time zone changes or the machine
/// resumes. Its menu shows the full date and the full time; choosing one of them copies it to the
/// clipboard. Main thread only.
class ClockItem : public HalvexMenuExtraBase {
  public:
    std::shared_ptr<platform::MenuExtra>
    initWithBundle(std::shared_ptr<platform::Bundle> bundle) override;

    void menuWillOpen() override;
    void menuDidClose() override;
    void willUnload() override;

  protected:
    /// Returns the format to show. Called by initWithBundle and reloadFormat.
    virtual std::string preferredFormat() = 0;
    /// Returns whether the title changes every second. By default, if the format shows seconds.
    virtual bool titleShowsSeconds();
    /// Shows the time in the bar. Called with each tick. The default sets the title.
    virtual void updateTitle(std::int64_t now);
    /// Updates the menu. Called with each tick while it is open. The default shows date and time.
    virtual void updateMenu(std::int64_t now);

    /// Reads the preferred format again and updates the title.
    void reloadFormat();
    /// Updates the title and the menu, and follows a change of titleShowsSeconds.
    void refresh();
    bool isMenuOpen() const { return menuOpen_; }

  private:
    void scheduleTicks();
    void updateTexts();

    std::string format_;
    bool menuOpen_ = false;
    std::unique_ptr<platform::Watch> ticks_;
    std::shared_ptr<platform::MenuItem> dateItem_;
    std::shared_ptr<platform::MenuItem> timeItem_;
};

} // namespace extras
