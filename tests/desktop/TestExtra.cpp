#include "menubar/HalvexMenuExtraBase.h"
#include "platform/Clock.h"
#include "platform/EventSource.h"
#include "platform/Log.h"
#include "platform/MenuExtraServer.h"
#include "platform/UserNotifications.h"
#include "platform/Workspace.h"
#include "platform/widgets/MenuExtraPlugIn.h"

#include <cstdlib>
#include <stdexcept>
#include <unistd.h>
#include <utility>

using namespace platform;

namespace {

/// A view for a menu that logs its input. Handles the wheel.
class LoggingView final : public MenuExtraView {
  public:
    LoggingView() { setFrameSize({120, 60}); }
    void mouseDown(const Event& event) override { note("down", event); }
    void mouseDragged(const Event& event) override { note("drag", event); }
    void mouseUp(const Event& event) override { note("up", event); }
    void mouseExited() override { logLine("view exit"); }
    bool scrollWheel(const WheelEvent& event) override {
        logLine("view wheel %d", static_cast<int>(event.deltaY));
        return true;
    }
    bool keyDown(const KeyEvent& event) override {
        logLine("view key %@", event.text);
        return !event.text.empty();
    }

  private:
    static void note(const char* what, const Event& event) {
        logLine("view %@ %d of %d", what, static_cast<int>(event.location.y), event.clickCount);
    }
};

/// Handles Shift-clicks itself, logs every click, and has a menu with two items and a submenu
/// between them. The name of the principal class selects a fault and when it occurs, for example
/// "ThrowsWhenClicked".
class TestExtra final : public HalvexMenuExtraBase {
  public:
    explicit TestExtra(std::string fault) : fault_(std::move(fault)) {}

    std::shared_ptr<MenuExtra> initWithBundle(std::shared_ptr<Bundle> bundle) override {
        failIf("AtStart");
        if (fault_ == "HasNoView")
            return shared_from_this();
        if (fault_ == "ReturnsNull" || !HalvexMenuExtraBase::initWithBundle(std::move(bundle)))
            return nullptr;
        setTitle("Test");
        setToolTip("An item for tests");
        sharedWorkspace().notificationCenter().addObserver(
            weak_from_this(), "Test", [](const Notification&) { note("told"); });
        if (fault_.ends_with("WhenTicking"))
            ticks_ = systemClock().tick(TickInterval::Second, [this] { failIf("WhenTicking"); });
        menu_ = std::make_shared<Menu>();
        if (fault_ == "HasAViewInItsMenu")
            menu_->addItem("View", {}, weak_from_this()).setView(std::make_shared<LoggingView>());
        menu_->addItem(
            "Choose", [](MenuItem&) { logLine("chosen"); }, weak_from_this());
        more_ = std::make_shared<Menu>();
        more_->addItem(
            "Nested item with a long title", [](MenuItem&) {}, weak_from_this());
        menu_->addItem("More", {}, weak_from_this()).setSubmenu(more_);
        menu_->addItem(
            "Fail", [](MenuItem&) { throw 5; }, weak_from_this());
        if (fault_ == "HasNoMenu")
            menu_.reset();
        return shared_from_this();
    }
    std::shared_ptr<AttributedString> attributedTitle() const override {
        failIf("WhenDrawn");
        return HalvexMenuExtraBase::attributedTitle();
    }
    bool clicked() override {
        failIf("WhenClicked");
        if (fault_ == "NotifiesWhenClicked")
            userNotifications().post({.title = "Test",
                                      .observer = weak_from_this(),
                                      .handler = [](const std::string&) { note("told"); }});
        if (fault_ == "ReplacesItsViewWhenClicked")
            setView(std::make_shared<HalvexMenuViewBase>()->initWithFrame({{}, {30, 22}}, this));
        return fault_ == "RemovesItemsWhenClicked" ? removeItems() : note("plain");
    }
    bool scrolled(const WheelEvent& event) override {
        logLine("scrolled %d", static_cast<int>(event.deltaY));
        return true;
    }
    bool clickWithCtrlKey() override { return note("control"); }
    bool clickWithShiftKey() override { return !note("shift"); }
    void willUnload() override {
        MenuExtraReference reference = 0;
        logLine("unloading: %d", CoreMenuExtraGetMenuExtra("test.extra", &reference));
        failIf("WhenUnloaded");
        HalvexMenuExtraBase::willUnload();
    }

  private:
    void failIf(const std::string& when) const {
        if (fault_ == "Throws" + when)
            throw std::runtime_error("no " + when);
        if (fault_ == "Crashes" + when)
            std::abort();
        if (fault_ == "Hangs" + when) {
            logLine("hanging");
            pause();
        }
    }
    static bool note(const char* kind) {
        logLine("click %@ %d", kind, eventSource().currentEvent().clickCount);
        return false;
    }
    /// Requests the removal of the bar's own clock and of itself, which the bar defers.
    static bool removeItems() {
        for (const char* identifier : {"com.apple.menuextra.clock", "test.extra"}) {
            MenuExtraReference reference = 0;
            CoreMenuExtraGetMenuExtra(identifier, &reference);
            CoreMenuExtraRemoveMenuExtra(reference, 0);
        }
        return true;
    }

    std::string fault_;
    std::unique_ptr<Watch> ticks_;
    std::shared_ptr<Menu> more_;
};

} // namespace

extern "C" MenuExtra* HALVEX_MENU_EXTRA_ENTRY(const char* principalClass) {
    const std::string fault = principalClass;
    return fault == "Unknown" ? nullptr : new TestExtra(fault);
}
