#pragma once

#include "platform/Bundle.h"
#include "platform/base/Exception.h"
#include "platform/values/PropertyList.h"
#include "platform/widgets/MenuExtraPlugIn.h"
#include "testing/FixedEvents.h"
#include "testing/ManualAppearance.h"
#include "testing/ManualClock.h"
#include "testing/ManualPreferences.h"
#include "testing/ManualTimeZones.h"
#include "testing/ManualTimers.h"
#include "testing/RecordingGraphics.h"
#include "testing/RecordingHost.h"
#include "testing/RecordingLog.h"
#include "testing/RecordingPasteboard.h"
#include "testing/RecordingUserNotifications.h"

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace halvextest {

/// An item that is loaded as the bar loads it, among services under the test's control. Compile the
/// item's sources into the test program. Main thread only.
class ItemUnderTest : platform::NonCopyable {
  public:
    ManualAppearance appearance;
    ManualClock clock;
    ManualPreferences preferences;
    ManualTimeZones zones;
    ManualTimers timers;
    FixedEvents events;
    RecordingGraphics graphics;
    RecordingHost host;
    RecordingLog log;
    RecordingPasteboard pasteboard;
    RecordingUserNotifications notifications;

    /// Removes the item, as the bar does before it unloads a bundle.
    ~ItemUnderTest() {
        if (extra_)
            extra_->willUnload();
    }

    /// Creates and initializes the item. Call it once, after the services have been prepared.
    /// @p information is its Info.plist; @p path its bundle, which need not exist. Returns whether
    /// the item can be used.
    bool load(const std::string& principalClass,
              platform::PropertyList::Dictionary information = {},
              const std::string& path = "/Item.menu") {
        const std::shared_ptr<platform::MenuExtra> created(
            HALVEX_MENU_EXTRA_ENTRY(principalClass.c_str()));
        if (created)
            extra_ = created->initWithBundle(
                std::make_shared<platform::Bundle>(path, std::move(information)));
        return extra_ != nullptr;
    }
    platform::MenuExtra& extra() const { return *extra_; }

    /// Returns the text in the bar, or an empty text.
    std::string title() const {
        const auto title = extra_->attributedTitle();
        return title ? title->string() : "";
    }
    /// Draws the item and returns what it drew, one line per operation.
    std::vector<std::string> draw() {
        graphics.drawn.clear();
        const auto& view = extra_->view();
        view->drawRect({{}, view->frame().size});
        return std::exchange(graphics.drawn, {});
    }
    /// Presses a mouse button over the item. @p flags are the masks of platform/values/Event.h.
    void click(std::uint32_t flags = 0, std::int32_t button = 0) {
        events.event = {.modifierFlags = flags, .clickCount = 1, .buttonNumber = button};
        extra_->view()->mouseDown(events.event);
    }
    /// Opens and closes the menu. Returns the titles of its entries: "-" for a separator, in
    /// parentheses if disabled, and with "* " in front if checked.
    std::vector<std::string> menuTitles() const {
        extra_->menuWillOpen();
        std::vector<std::string> titles;
        for (const auto& item : items()) {
            std::string text = item->isSeparatorItem() ? "-" : item->title();
            if (item->state() == platform::MenuItem::State::On)
                text.insert(0, "* ");
            const bool isPlain = item->isSeparatorItem() || item->isEnabled();
            titles.push_back(isPlain ? text : '(' + text + ')');
        }
        extra_->menuDidClose();
        return titles;
    }
    /// Opens the menu, chooses the first entry with this title, and closes the menu. Returns false
    /// if there is no such entry or it is disabled.
    bool choose(const std::string& itemTitle) const {
        extra_->menuWillOpen();
        bool performed = false;
        for (const auto& item : std::vector(items()))
            if (!performed && item->title() == itemTitle)
                performed = item->perform();
        extra_->menuDidClose();
        return performed;
    }

  private:
    std::vector<std::shared_ptr<platform::MenuItem>> items() const {
        const auto menu = extra_->menu();
        return menu ? menu->items() : std::vector<std::shared_ptr<platform::MenuItem>>();
    }

    std::shared_ptr<platform::MenuExtra> extra_;
};

} // namespace halvextest
