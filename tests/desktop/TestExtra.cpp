#include "menubar/HalvexMenuExtraBase.h"
#include "platform/Clock.h"
#include "platform/Log.h"
#include "platform/MenuExtraPlugIn.h"

#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <unistd.h>
#include <utility>

using namespace platform;

namespace {

/// Handles Shift-clicks itself, logs every click, and has a menu of all kinds of items.
class Calm : public HalvexMenuExtraBase {
  public:
    std::shared_ptr<MenuExtra> initWithBundle(std::shared_ptr<Bundle> bundle) override {
        if (!HalvexMenuExtraBase::initWithBundle(std::move(bundle)))
            return nullptr;
        setTitle("Test");
        menu_ = std::make_shared<Menu>();
        menu_->addItem(
            "Choose", [](MenuItem&) { logLine("chosen"); }, weak_from_this());
        menu_->addItem(
            "Fail", [](MenuItem&) { throw 5; }, weak_from_this());
        return shared_from_this();
    }
    bool clicked() override { return note("plain"); }
    bool clickWithAltKey() override { return note("option"); }
    bool clickWithCtrlKey() override { return note("control"); }
    bool clickWithShiftKey() override { return !note("shift"); }
    void willUnload() override {
        logLine("leaving");
        HalvexMenuExtraBase::willUnload();
    }

  private:
    bool note(const char* kind) {
        logLine("click %@ %d", kind, eventSource().currentEvent().clickCount);
        return false;
    }
};

class ThrowsAtStart : public Calm {
    std::shared_ptr<MenuExtra> initWithBundle(std::shared_ptr<Bundle>) override {
        throw std::runtime_error("no start");
    }
};

class GivesNothing : public Calm {
    std::shared_ptr<MenuExtra> initWithBundle(std::shared_ptr<Bundle>) override { return nullptr; }
};

class ThrowsWhenClicked : public Calm {
    bool clicked() override { throw std::runtime_error("no click"); }
};

class ThrowsWhenTicking : public Calm {
  public:
    std::shared_ptr<MenuExtra> initWithBundle(std::shared_ptr<Bundle> bundle) override {
        ticks_ =
            systemClock().tick(TickInterval::Second, [] { throw std::runtime_error("no tick"); });
        return Calm::initWithBundle(std::move(bundle));
    }

  private:
    std::unique_ptr<Watch> ticks_;
};

class ThrowsWhenDrawn : public Calm {
  public:
    std::shared_ptr<AttributedString> attributedTitle() const override {
        throw std::runtime_error("no title");
    }
};

class CrashesAtStart : public Calm {
    std::shared_ptr<MenuExtra> initWithBundle(std::shared_ptr<Bundle>) override { std::abort(); }
};

class HangsAtStart : public Calm {
    std::shared_ptr<MenuExtra> initWithBundle(std::shared_ptr<Bundle>) override {
        logLine("hanging");
        pause();
        return nullptr;
    }
};

class CrashesWhenDrawn : public Calm {
  public:
    std::shared_ptr<AttributedString> attributedTitle() const override {
        std::raise(SIGSEGV);
        return nullptr;
    }
};

class CrashesWhenClicked : public Calm {
    bool clicked() override { std::abort(); }
};

/// Takes itself and the bar's own clock out of the bar, which is not done in the middle of its
/// code.
class LeavesWhenClicked : public Calm {
    bool clicked() override {
        for (const char* identifier : {"com.apple.menuextra.clock", "test.extra"}) {
            MenuExtraReference reference = 0;
            CoreMenuExtraGetMenuExtra(identifier, &reference);
            logLine("leave: %d", CoreMenuExtraRemoveMenuExtra(reference, 0));
        }
        return true;
    }
    void willUnload() override {
        MenuExtraReference reference = 0;
        logLine("itself: %d", CoreMenuExtraGetMenuExtra("test.extra", &reference));
        Calm::willUnload();
    }
};

template <class Class>
MenuExtra* make() {
    return new Class;
}

} // namespace

extern "C" MenuExtra* HalvexMenuExtraEntry_1(const char* principalClass) {
    const std::pair<std::string_view, MenuExtra* (*)()> classes[] = {
        {"Calm", make<Calm>},
        {"ThrowsAtStart", make<ThrowsAtStart>},
        {"GivesNothing", make<GivesNothing>},
        {"ThrowsWhenClicked", make<ThrowsWhenClicked>},
        {"ThrowsWhenTicking", make<ThrowsWhenTicking>},
        {"ThrowsWhenDrawn", make<ThrowsWhenDrawn>},
        {"CrashesAtStart", make<CrashesAtStart>},
        {"HangsAtStart", make<HangsAtStart>},
        {"CrashesWhenDrawn", make<CrashesWhenDrawn>},
        {"CrashesWhenClicked", make<CrashesWhenClicked>},
        {"LeavesWhenClicked", make<LeavesWhenClicked>},
    };
    for (const auto& [name, makeOne] : classes) {
        if (name == principalClass)
            return makeOne();
    }
    return nullptr;
}
