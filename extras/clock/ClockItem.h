#pragma once

#include "menubar/HalvexMenuExtraBase.h"
#include "platform/Clock.h"

#include <memory>
#include <string>

/// A clock in the bar. It is woken once a second when its format shows seconds or its menu is open,
/// else once a minute, and when the clock is set, the machine wakes up or the time zone changes.
/// Its menu shows the full date and time, and copies the one that is chosen. Main thread.
class ClockItem : public HalvexMenuExtraBase {
  public:
    std::shared_ptr<platform::MenuExtra>
    initWithBundle(std::shared_ptr<platform::Bundle> bundle) override;

    void menuWillOpen() override;
    void menuDidClose() override;
    void willUnload() override;

  protected:
    /// The format to show, asked for at the start and at each restart.
    virtual std::string preferredFormat() = 0;

    /// Takes the format anew and shows the time in it.
    void restart();

  private:
    void keepTicking();
    void showTime();

    std::string format_;
    bool menuOpen_ = false;
    std::unique_ptr<platform::Watch> ticks_;
    std::shared_ptr<platform::MenuItem> dateItem_;
    std::shared_ptr<platform::MenuItem> timeItem_;
};
