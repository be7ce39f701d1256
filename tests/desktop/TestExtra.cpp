#include "menubar/HalvexMenuExtraBase.h"
#include "platform/Clock.h"
#include "platform/EventSource.h"
#include "platform/Log.h"
#include "platform/MenuExtraServer.h"
#include "platform/Workspace.h"
#include "platform/widgets/MenuExtraPlugIn.h"

#include <cstdlib>
#include <stdexcept>
#include <unistd.h>
#include <utility>

using namespace platform;

namespace {

/// Handles Shift-clicks itself, logs every click, and has a menu with two items. Its principal
/// class says what it does wrong and when, "ThrowsWhenClicked" for one; "Calm" does nothing wrong.
class TestExtra final : public HalvexMenuExtraBase {
  public:
    explicit TestExtra(std::string kind) : kind_(std::move(kind)) {}

    std::shared_ptr<MenuExtra> initWithBundle(std::shared_ptr<Bundle> bundle) override {
        now("AtStart");
        if (kind_ == "HasNoView")
            return shared_from_this();
        if (kind_ == "GivesNothing" || !HalvexMenuExtraBase::initWithBundle(std::move(bundle)))
            return nullptr;
        setTitle("Test");
        sharedWorkspace().notificationCenter().addObserver(
            weak_from_this(), "Test", [this](const Notification&) { note("told"); });
        if (kind_.ends_with("WhenTicking"))
            ticks_ = systemClock().tick(TickInterval::Second, [this] { now("WhenTicking"); });
        menu_ = std::make_shared<Menu>();
        menu_->addItem(
            "Choose", [](MenuItem&) { logLine("chosen"); }, weak_from_this());
        menu_->addItem(
            "Fail", [](MenuItem&) { throw 5; }, weak_from_this());
        return shared_from_this();
    }
    std::shared_ptr<AttributedString> attributedTitle() const override {
        now("WhenDrawn");
        return HalvexMenuExtraBase::attributedTitle();
    }
    bool clicked() override {
        now("WhenClicked");
        return kind_ == "LeavesWhenClicked" ? leave() : note("plain");
    }
    bool clickWithAltKey() override { return note("option"); }
    bool clickWithCtrlKey() override { return note("control"); }
    bool clickWithShiftKey() override { return !note("shift"); }
    void willUnload() override {
        MenuExtraReference reference = 0;
        logLine("leaving, itself: %d", CoreMenuExtraGetMenuExtra("test.extra", &reference));
        HalvexMenuExtraBase::willUnload();
    }

  private:
    void now(const std::string& when) const {
        if (kind_ == "Throws" + when)
            throw std::runtime_error("no " + when);
        if (kind_ == "Crashes" + when)
            std::abort();
        if (kind_ == "Hangs" + when) {
            logLine("hanging");
            pause();
        }
    }
    static bool note(const char* kind) {
        logLine("click %@ %d", kind, eventSource().currentEvent().clickCount);
        return false;
    }
    /// Takes itself and the bar's own clock out, which the bar does not do in the middle of this.
    static bool leave() {
        for (const char* identifier : {"com.apple.menuextra.clock", "test.extra"}) {
            MenuExtraReference reference = 0;
            CoreMenuExtraGetMenuExtra(identifier, &reference);
            CoreMenuExtraRemoveMenuExtra(reference, 0);
        }
        return true;
    }

    std::string kind_;
    std::unique_ptr<Watch> ticks_;
};

} // namespace

extern "C" MenuExtra* HalvexMenuExtraEntry_2(const char* principalClass) {
    const std::string kind = principalClass;
    return kind == "Unknown" ? nullptr : new TestExtra(kind);
}
