// Shows how long the machine has been running. A click opens a menu that copies it.
#include "menubar/HalvexMenuExtraBase.h"
#include "platform/Clock.h"
#include "platform/Pasteboard.h"
#include "platform/widgets/Menu.h"
#include "platform/widgets/MenuExtraPlugIn.h"

#include <fstream>
#include <string>
#include <utility>

namespace {

/// Returns the minutes since the machine was started, or -1 if the system does not say.
long minutes() {
    double seconds = -60;
    std::ifstream("/proc/uptime") >> seconds;
    return static_cast<long>(seconds / 60);
}

std::string text(long minutes) {
    if (minutes < 0)
        return "?";
    const long hours = minutes / 60;
    const std::string days = hours >= 24 ? std::to_string(hours / 24) + "d " : "";
    return days + std::to_string(hours % 24) + "h " + std::to_string(minutes % 60) + "m";
}

} // namespace

class Uptime final : public HalvexMenuExtraBase {
  public:
    std::shared_ptr<platform::MenuExtra>
    initWithBundle(std::shared_ptr<platform::Bundle> bundle) override {
        if (!HalvexMenuExtraBase::initWithBundle(std::move(bundle)))
            return nullptr;
        menu_ = std::make_shared<platform::Menu>();
        menu_->addItem(
            "Copy", [this](platform::MenuItem&) { copy(); }, weak_from_this());
        ticks_ = platform::systemClock().tick(platform::TickInterval::Minute, [this] { update(); });
        update();
        return shared_from_this();
    }
    bool clickWithShiftKey() override {
        copy();
        return true; // handled: the menu stays closed
    }
    void willUnload() override {
        ticks_.reset();
        HalvexMenuExtraBase::willUnload();
    }

  private:
    void update() { setTitle(text(minutes())); }
    void copy() { platform::generalPasteboard().setString(attributedTitle()->string()); }

    std::unique_ptr<platform::Watch> ticks_;
};

HALVEX_MENU_EXTRA(Uptime)
