#include "menubar/HalvexMenuViewBase.h"

#include "menubar/HalvexMenuExtraBase.h"
#include "menuextras/ExportedIdentifiers.h"
#include "tests/support/Fakes.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/ScopedEnvironment.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace platform;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// Remembers which click it got, and answers as told.
class ClickedExtra final : public HalvexMenuExtraBase {
  public:
    std::string clicks;
    bool answer = true;

    bool clicked() override { return note("plain"); }
    bool clickWithAltKey() override { return note("alt"); }
    bool clickWithShiftKey() override { return note("shift"); }
    bool clickWithCtrlKey() override { return note("ctrl"); }

  private:
    bool note(const char* kind) {
        clicks += kind;
        return answer;
    }
};

class MenuView : public testing::Test {
  protected:
    void SetUp() override {
        extra = std::make_shared<ClickedExtra>();
        extra->initWithBundle(std::make_shared<Bundle>("/Test.menu", PropertyList::Dictionary()));
        view = std::static_pointer_cast<HalvexMenuViewBase>(extra->view());
        log.take();
        graphics.drawn.clear();
    }
    void TearDown() override { myDebugME = 0; }

    std::string click(std::uint32_t flags, std::int32_t button = 0) {
        extra->clicks.clear();
        view->mouseDown({.modifierFlags = flags, .clickCount = 1, .buttonNumber = button});
        return extra->clicks;
    }

    test::RecordingLog log;
    test::RecordingHost host;
    test::RecordingGraphics graphics;
    test::RecordingWorkspace workspace;
    std::shared_ptr<ClickedExtra> extra;
    std::shared_ptr<HalvexMenuViewBase> view;
};

TEST_F(MenuView, ModifiersAndButtonsChooseTheClickInTheirOrder) {
    struct Case {
        std::uint32_t flags;
        std::int32_t button;
        const char* click;
        const char* logged;
    };
    const Case cases[] = {
        {0, 0, "plain", nullptr},
        {0, 1, "plain", nullptr},
        {0, 2, "plain", nullptr},
        {0, 3, "ctrl", "ControlKeyMask"},
        {0, 4, "plain", nullptr},
        {kControlKeyMask, 0, "ctrl", "ControlKeyMask"},
        {kShiftKeyMask, 0, "shift", "ShiftKeyMask"},
        {kShiftKeyMask, 3, "ctrl", "ControlKeyMask"},
        {kOptionKeyMask, 0, "alt", "AlttKeyMask"},
        {kControlKeyMask | kShiftKeyMask, 0, "ctrl", "ControlKeyMask"},
        {kShiftKeyMask | kOptionKeyMask, 0, "shift", "ShiftKeyMask"},
        {0x100000, 0, "plain", nullptr}, // a key that means nothing here
    };
    for (const bool verbose : {false, true}) {
        for (const Case& c : cases) {
            myDebugME = verbose;
            EXPECT_EQ(click(c.flags, c.button), c.click) << c.flags << ' ' << c.button;
            std::vector<std::string> lines;
            if (verbose)
                lines.push_back(
                    formatLogLine("mouse down flags: %016x, Double click %d buttonNum=%d",
                                  {c.flags, 1, c.button}));
            if (verbose && c.logged)
                lines.emplace_back(c.logged);
            EXPECT_EQ(log.take(), lines);
        }
    }
    EXPECT_EQ(host.menuToggles, 0) << "handled clicks open no menu";
}

TEST_F(MenuView, TheVerboseLineHoldsTheFlagsInSixteenHexadecimalDigits) {
    myDebugME = 1;
    view->mouseDown({.modifierFlags = 0x800A0000, .clickCount = 2, .buttonNumber = 1});
    EXPECT_EQ(log.take().front(), "mouse down flags: 00000000800a0000, Double click 2 buttonNum=1");
}

TEST_F(MenuView, AnUnhandledClickOpensTheMenu) {
    extra->answer = false;
    for (const std::uint32_t flags : {0U, kShiftKeyMask, kControlKeyMask, kOptionKeyMask})
        click(flags);
    EXPECT_EQ(host.menuToggles, 4);
}

TEST_F(MenuView, ControlAndOptionSwitchVerboseLogLinesOnAndOff) {
    const test::ScopedEnvironment home("HOME", "/home/somebody");
    EXPECT_EQ(click(kControlKeyMask | kOptionKeyMask), "") << "the click goes no further";
    EXPECT_EQ(myDebugME, 1);
    EXPECT_THAT(log.take(), ElementsAre("CTRL+Option/Alt key pressed - myDebug 1"));
    EXPECT_THAT(workspace.selected, ElementsAre("/home/somebody/Library/Preferences/"
                                                "com.quorvanesoftware.HalvexPro.plist|"));
    EXPECT_EQ(host.menuToggles, 0);

    EXPECT_EQ(click(kControlKeyMask | kOptionKeyMask | kShiftKeyMask), "ctrl");
    EXPECT_EQ(myDebugME, 0);
    EXPECT_THAT(log.take(), ElementsAre("CTRL+Option/Alt key pressed - myDebug 0"));
    EXPECT_EQ(workspace.selected.size(), 1U);
}

TEST_F(MenuView, DrawsTheTitleAndThenTheImage) {
    struct Case {
        const char* title; // 15 points high; null: none
        double imageWidth; // 0: no image
        double imageHeight;
        double height;
        std::vector<std::string> drawn;
    };
    const std::vector<std::string> start{"save", "no smoothing", "text mode 0"};
    const Case cases[] = {
        {"ab", 0, 0, 22, {"text ab at 0 5", "restore"}}, // 3.5 + 1.5
        {"ab", 0, 0, 21, {"text ab at 0 4", "restore"}}, // 3 + 1.5
        {"ab", 0, 0, 11, {"text ab at 0 0", "restore"}}, // -0.5: toward zero
        {"ab", 0, 0, 7, {"text ab at 0 -2", "restore"}}, // -2.5
        {"ab",
         15.6,
         16,
         22,
         {"text ab at 18 5", "restore",
          "image 0 0 15.6 16 into 0 3 15.6 16 operation 1 fraction 1"}},
        {nullptr, 16, 17, 22, {"image 0 0 16 17 into 0 2 16 17 operation 1 fraction 1"}},
        {nullptr, 16, 25, 22, {"image 0 0 16 25 into 0 -1 16 25 operation 1 fraction 1"}},
    };
    for (const Case& c : cases) {
        extra->setTitle(c.title ? std::optional<std::string>(c.title) : std::nullopt);
        extra->setImage(c.imageWidth > 0
                            ? std::make_shared<test::BlankImage>(c.imageWidth, c.imageHeight)
                            : nullptr);
        graphics.drawn.clear();
        view->drawRect({{5, 5}, {1, c.height}});
        std::vector<std::string> expected = c.title ? start : std::vector<std::string>{};
        expected.insert(expected.end(), c.drawn.begin(), c.drawn.end());
        EXPECT_EQ(graphics.drawn, expected);
    }
    EXPECT_THAT(log.take(), IsEmpty());
}

TEST_F(MenuView, WhileTheMenuIsOpenBothAreDrawnWithXor) {
    extra->setImage(std::make_shared<test::BlankImage>(16, 16));
    view->setDrawShadow(true);
    test::RecordingHost::setMenuDown(*extra, true);
    graphics.drawn.clear();
    view->drawRect({{}, {60, 22}});
    EXPECT_THAT(graphics.drawn,
                ElementsAre("save", "no smoothing", "text mode 0", "operation 10",
                            "shadow 1 -1 blur 5", "text - at 19 5", "restore",
                            "image 0 0 16 16 into 0 3 16 16 operation 10 fraction 1"));
}

TEST_F(MenuView, LogsWhatItDrawsOnlyWhenVerboseButAlwaysThatThereIsNothing) {
    myDebugME = 1;
    view->drawRect({{}, {60, 22}});
    EXPECT_THAT(log.take(), ElementsAre("HalvexMenuViewBase  = -"));
    for (const bool verbose : {false, true}) {
        myDebugME = verbose;
        extra->setTitle(std::nullopt);
        view->drawRect({{}, {60, 22}});
        EXPECT_THAT(log.take(), ElementsAre("CalendarMenuView both nil"));
    }
}

} // namespace
