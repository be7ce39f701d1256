#include "menubar/HalvexMenuViewBase.h"

#include "identifiers/ExportedIdentifiers.h"
#include "menubar/HalvexMenuExtraBase.h"
#include "tests/support/Fakes.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/ScopedEnvironment.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace platform;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Base = HalvexMenuExtraBase;

/// Records the clicks it receives. Returns the base class's result unless handlesClicks is set.
class ClickedExtra final : public Base {
  public:
    std::string clicks;
    bool handlesClicks = true;

    bool clicked() override { return record("plain", Base::clicked()); }
    bool clickWithAltKey() override { return record("alt", Base::clickWithAltKey()); }
    bool clickWithShiftKey() override { return record("shift", Base::clickWithShiftKey()); }
    bool clickWithCtrlKey() override { return record("ctrl", Base::clickWithCtrlKey()); }

  private:
    bool record(const char* kind, bool baseResult) {
        clicks += kind;
        return handlesClicks || baseResult;
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

TEST_F(MenuView, ChoosesTheClickByModifiersAndButtonInOrderOfPrecedence) {
    const std::tuple<std::uint32_t, std::int32_t, const char*, const char*> cases[] = {
        {0, 2, "plain", nullptr},
        {0, 3, "ctrl", "ControlKeyMask"},
        {0, 4, "plain", nullptr},
        {kControlKeyMask, 0, "ctrl", "ControlKeyMask"},
        {kShiftKeyMask, 3, "ctrl", "ControlKeyMask"},
        {kOptionKeyMask, 0, "alt", "AlttKeyMask"},
        {kControlKeyMask | kShiftKeyMask, 0, "ctrl", "ControlKeyMask"},
        {kShiftKeyMask | kOptionKeyMask, 0, "shift", "ShiftKeyMask"},
        {0x80100000, 1, "plain", nullptr}, // modifiers without a meaning here
    };
    for (const auto& [flags, button, kind, logged] : cases) {
        myDebugME = 0;
        EXPECT_EQ(click(flags, button), kind) << flags << ' ' << button;
        EXPECT_THAT(log.take(), IsEmpty());
        myDebugME = 1;
        click(flags, button);
        std::vector<std::string> lines{formatLogLine(
            "mouse down flags: %016x, Double click %d buttonNum=%d", {flags, 1, button})};
        if (logged)
            lines.emplace_back(logged);
        EXPECT_EQ(log.take(), lines);
    }
    EXPECT_EQ(host.menuToggles, 0) << "a handled click does not open the menu";
    extra->handlesClicks = false;
    for (const std::uint32_t flags : {0U, kShiftKeyMask, kControlKeyMask, kOptionKeyMask})
        click(flags);
    EXPECT_EQ(host.menuToggles, 4) << "an unhandled click opens the menu";
    EXPECT_TRUE(view->acceptsFirstMouse({}));
}

TEST_F(MenuView, TogglesVerboseLoggingOnAControlOptionClick) {
    const test::ScopedEnvironment home("HOME", "/home/user");
    EXPECT_EQ(click(kControlKeyMask | kOptionKeyMask), "") << "no click operation is called";
    EXPECT_EQ(myDebugME, 1);
    EXPECT_THAT(log.take(), ElementsAre("CTRL+Option/Alt key pressed - myDebug 1"));
    EXPECT_THAT(workspace.selected, ElementsAre("/home/user/Library/Preferences/"
                                                "com.quorvanesoftware.HalvexPro.plist|"));
    EXPECT_EQ(host.menuToggles, 0);

    EXPECT_EQ(click(kControlKeyMask | kOptionKeyMask | kShiftKeyMask), "ctrl");
    EXPECT_EQ(myDebugME, 0);
    EXPECT_THAT(log.take(), ElementsAre("CTRL+Option/Alt key pressed - myDebug 0"));
    EXPECT_EQ(workspace.selected.size(), 1U);
}

TEST_F(MenuView, DrawsTheTitleThenTheImage) {
    // The title, 15 points high, the size of the image, the height of the item, and what is drawn.
    const std::tuple<const char*, Size, double, const char*, const char*> cases[] = {
        {"ab", {0, 0}, 22, "text ab at 0 5", nullptr}, // 3.5 + 1.5
        {"ab", {0, 0}, 21, "text ab at 0 4", nullptr}, // 3 + 1.5
        {"ab", {0, 0}, 11, "text ab at 0 0", nullptr}, // -0.5: toward zero
        {"ab", {0, 0}, 7, "text ab at 0 -2", nullptr}, // -2.5
        {"ab", {15.6, 16}, 22, "text ab at 18 5", "0 0 15.6 16 into 0 3 15.6 16"},
        {nullptr, {16, 17}, 22, nullptr, "0 0 16 17 into 0 2 16 17"},
        {nullptr, {16, 25}, 22, nullptr, "0 0 16 25 into 0 -1 16 25"},
    };
    for (const auto& [title, size, height, text, image] : cases) {
        extra->setTitle(title ? std::optional<std::string>(title) : std::nullopt);
        extra->setImage(image ? std::make_shared<test::BlankImage>(size.width, size.height)
                              : nullptr);
        graphics.drawn.clear();
        view->drawRect({{5, 5}, {1, height}});
        std::vector<std::string> expected;
        if (text)
            expected = {"save", "no smoothing", "text mode 0", text, "restore"};
        if (image)
            expected.push_back(std::string("image ") + image + " operation 1 fraction 1");
        EXPECT_EQ(graphics.drawn, expected);
        EXPECT_THAT(log.take(), IsEmpty());
    }
}

TEST_F(MenuView, DrawsShadowsAlwaysAndUsesXorWhileTheMenuIsOpen) {
    extra->setImage(std::make_shared<test::BlankImage>(16, 16));
    view->setDrawShadow(true);
    view->drawRect({{}, {60, 22}});
    EXPECT_THAT(graphics.drawn, testing::Contains("shadow 1 -1 blur 5"));
    extra->setMenuDown(true);
    graphics.drawn.clear();
    view->drawRect({{}, {60, 22}});
    EXPECT_THAT(graphics.drawn,
                ElementsAre("save", "no smoothing", "text mode 0", "operation 10",
                            "shadow 1 -1 blur 5", "text - at 19 5", "restore",
                            "image 0 0 16 16 into 0 3 16 16 operation 10 fraction 1"));
}

TEST_F(MenuView, OnlyLogsThatItCannotDrawOutsideOfDrawing) {
    extra->setTitle("ab");
    graphics.isDrawing = false;
    EXPECT_NO_THROW(view->drawRect({{}, {60, 22}}));
    EXPECT_EQ(log.take().back(), "cannot draw an item: nothing is being drawn");
}

TEST_F(MenuView, LogsTheTitleOnlyWhenVerboseAndAnEmptyItemAlways) {
    for (const bool verbose : {false, true}) {
        myDebugME = verbose;
        extra->setTitle("-");
        view->drawRect({{}, {60, 22}});
        EXPECT_EQ(log.contains("HalvexMenuViewBase  = -"), verbose);
        log.take();
        extra->setTitle(std::nullopt);
        view->drawRect({{}, {60, 22}});
        EXPECT_THAT(log.take(), ElementsAre("CalendarMenuView both nil"));
    }
}

} // namespace
