#include "ui/HUDWindow.h"
#include "platform/Bundle.h"
#include "platform/DynamicLoader.h"
#include "platform/TrustedFile.h"
#include "platform/expat/ExpatPropertyLists.h"
#include "platform/widgets/MenuExtraPlugIn.h"
#include "tests/support/Fakes.h"
#include "tests/support/RecordingLog.h"
#include "ui/HUDBackground.h"

#include <gmock/gmock.h>

using namespace platform;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// Responds only to "click:" and records the senders.
class Target final : public ActionTarget {
  public:
    std::vector<ActionSender*> senders;

    bool respondsToSelector(const Selector& selector) const override {
        return selector == "click:";
    }
    void performSelector(const Selector&, ActionSender& sender) override {
        senders.push_back(&sender);
    }
};

class HUDPanel : public testing::Test {
  protected:
    HUDPanel() { platform::expat::install(); }

    /// Creates a panel with this frame size.
    std::shared_ptr<HUDWindow> panelOfSize(double width, double height) {
        auto panel = std::make_shared<HUDWindow>();
        panel->initWithContentRect({{}, {width, height - kPanelTitleBarHeight}}, 0,
                                   BackingStore::Buffered, true);
        return panel;
    }

    test::RecordingGraphics graphics;
    test::RecordingPanels panels;
    test::RecordingLog log;
};

TEST_F(HUDPanel, IgnoresTheStyleMaskAndSetsUpItsWindowInOrder) {
    const auto panel = std::make_shared<HUDWindow>();
    constexpr std::uint32_t kBorderless = 0;
    EXPECT_EQ(panel->initWithContentRect({{10, 20}, {320, 200}}, kBorderless,
                                         BackingStore::Buffered, false),
              panel);
    EXPECT_THAT(panels.calls,
                ElementsAre("window 8223", "colour alpha 1 opaque", "colour alpha 1 opaque",
                            "colour alpha 1", "colour alpha 1 shadow",
                            "colour alpha 1 shadow movable", "pattern alpha 1 shadow movable",
                            "pattern alpha 1 shadow movable indicator"));
    EXPECT_EQ(panel->frame(), (Rect{{10, 20}, {320, 219}}));
    EXPECT_EQ(panel->contentView().size(), (Size{320, 200}));
    EXPECT_TRUE(panel->canBecomeKeyWindow());

    panels.makesWindows = false;
    panels.calls.clear();
    EXPECT_EQ(
        std::make_shared<HUDWindow>()->initWithContentRect({}, 0, BackingStore::Buffered, false),
        nullptr);
    EXPECT_THAT(panels.calls, ElementsAre("window 8223"));
}

TEST_F(HUDPanel, PaintsItsBodyTitleBarAndTitle) {
    const std::string body = "path with 0.1 0.1 0.1 0.75 space 2 operation 2\n";
    const std::string bar = "close\npath with 0.25 0.25 0.25 0.75 space 2 operation 2\n";
    const std::pair<Size, std::string> cases[] = {
        {{101.7, 50.5},
         "canvas 101.7 50.5\n" + body +
             "move 50 0\narc 101 0 to 101 15 radius 6\nline 101 31\nline 0 31\n"
             "arc 0 31 to 0 15 radius 6\narc 0 0 to 50 0 radius 6\n" +
             bar +
             "move 0 31\nline 101 31\narc 101 50 to 50 50 radius 6\n"
             "arc 0 50 to 0 31 radius 6\nclose\ntext Hi in 19 33.5 63.7 15\n"},
        // Lower than the title bar and narrower than the margins of the title.
        {{30, 15.5},
         "canvas 30 15.5\n" + body +
             "move 15 0\narc 30 0 to 30 -1 radius 6\nline 30 -3\nline 0 -3\n"
             "arc 0 -3 to 0 -1 radius 6\narc 0 0 to 15 0 radius 6\n" +
             bar +
             "move 0 -3\nline 30 -3\narc 30 15 to 15 15 radius 6\n"
             "arc 0 15 to 0 -3 radius 6\nclose\ntext Hi in 19 -1.5 -8 15\n"},
    };
    for (const auto& [size, drawn] : cases) {
        const auto panel = panelOfSize(100, 50);
        panel->setTitle("Hi");
        panel->setFrame({{}, size}, false, false);
        graphics.drawn.clear();
        const Color color = panel->sizedHUDBackground();
        std::string lines;
        for (const std::string& line : graphics.drawn)
            lines += line + '\n';
        EXPECT_EQ(lines, drawn);
        ASSERT_TRUE(color.pattern);
        EXPECT_EQ(color.pattern->size(), size);
    }
    const TextAttributes& attributes = graphics.texts.back().attributesAt(0);
    EXPECT_EQ(attributes.font, (Font{.family = "", .size = 11}));
    EXPECT_EQ(attributes.foregroundColor, calibratedWhite(1));
    EXPECT_EQ(attributes.paragraphStyle,
              (ParagraphStyle{TextAlignment::Center, LineBreakMode::TruncatingTail}));
}

TEST_F(HUDPanel, RepaintsWhenResizedOrRetitledAndDisplaysImmediatelyDuringSetFrame) {
    const auto panel = panelOfSize(100, 50);
    const std::string look = "pattern alpha 1 shadow movable indicator";
    panels.calls.clear();
    panel->setFrame({{5, 5}, {200, 80}}, true, true);
    EXPECT_THAT(panels.calls,
                ElementsAre("frame display animate", look, "display", look, "display"));
    EXPECT_EQ(panel->look().backgroundColor.pattern->size(), (Size{200, 80}));

    panels.calls.clear();
    panel->frameDidChange({{0, 0}, {200, 80}}); // moved
    EXPECT_THAT(panels.calls, IsEmpty());
    panel->frameDidChange({{0, 0}, {210, 90}});
    EXPECT_THAT(panels.calls, ElementsAre(look));
    EXPECT_EQ(panel->look().backgroundColor.pattern->size(), (Size{210, 90}));

    panels.calls.clear();
    panel->setTitle("New");
    EXPECT_THAT(panels.calls, ElementsAre("title New", look));
    EXPECT_EQ(graphics.drawn.back(), "text New in 19 73 172 15");
}

TEST_F(HUDPanel, SendsItsActionOnlyToALiveTargetThatResponds) {
    const auto panel = panelOfSize(100, 50);
    auto target = std::make_shared<Target>();
    panel->mouseUp({});
    panel->setAction("click:");
    panel->mouseUp({});
    panel->setTarget(target);
    for (const char* unknown : {"", "other:"}) {
        panel->setAction(unknown);
        panel->mouseUp({});
    }
    EXPECT_THAT(target->senders, IsEmpty());
    panel->setAction("click:");
    panel->mouseUp({});
    EXPECT_THAT(target->senders, ElementsAre(panel.get()));
    EXPECT_EQ(panel->target(), target);
    target.reset();
    EXPECT_EQ(panel->target(), nullptr) << "held weakly";
    panel->mouseUp({});
}

TEST_F(HUDPanel, KeepsTheButtonInTheTopRightCorner) {
    const auto panel = panelOfSize(200, 119);
    const auto target = std::make_shared<Target>();
    panel->addiButton({{50, 50}, {200, 100}}, target, "click:");
    ASSERT_EQ(panel->contentView().buttons().size(), 1U);
    Button& button = *panel->contentView().buttons().front();
    EXPECT_EQ(button.frame(), (Rect{{184, 84}, {13, 13}}));
    const Button::Look& look = button.look();
    EXPECT_EQ(look.bezelStyle, BezelStyle{1});
    EXPECT_EQ(look.type, ButtonType{5});
    EXPECT_FALSE(look.bordered);
    EXPECT_EQ(look.imagePosition, ImagePosition{4});
    EXPECT_EQ(look.focusRingType, FocusRingType{1});
    EXPECT_EQ(button.autoresizingMask(), 9U);
    EXPECT_EQ(button.title(), "");
    EXPECT_NE(button.accessibilityLabel(), "");
    ASSERT_TRUE(look.image) << "found in the library's bundle";
    EXPECT_EQ(look.image->size(), (Size{13, 13}));
    EXPECT_THAT(log.take(), IsEmpty());
    button.performClick();
    EXPECT_THAT(target->senders, ElementsAre(&button));

    panel->setFrame({{}, {300, 169}}, false, false);
    EXPECT_EQ(button.frame(), (Rect{{284, 134}, {13, 13}}));

    graphics.namedImage = "white_i";
    panel->addiButton({{}, {20, 20}}, target, "click:");
    EXPECT_EQ(panel->contentView().buttons().back()->look().image->size(), (Size{9, 9}));

    panel->addCloseButton(target);
    EXPECT_EQ(panel->contentView().buttons().size(), 2U);
}

TEST_F(HUDPanel, LoadsTheButtonImageFromTheBundleOfItsDynamicClass) {
    std::string reason;
    const std::string bundle = HALVEX_PANEL_PLUG_IN;
    const auto code = dynamicLoader().load(
        TrustedFile::open(bundle + "/Contents/Linux/PanelPlugIn", reason), reason);
    ASSERT_TRUE(code) << reason;
    const auto make = reinterpret_cast<MenuExtraEntryPoint>(code->symbol(kMenuExtraEntryPoint));
    const std::unique_ptr<MenuExtra> extra(make("PanelPlugIn"));
    EXPECT_THAT(log.take(), ElementsAre("bundle NSBundle <" + bundle + "> (" + bundle +
                                        ") missing image white_i"));
    EXPECT_EQ(Bundle::bundleForClass(typeid(HUDWindow))->bundlePath(), HALVEX_LIBRARY_BUNDLE);
    const MenuExtra& made = *extra;
    EXPECT_EQ(Bundle::bundleForClass(typeid(made))->bundleIdentifier(), "test.panel");
}

TEST_F(HUDPanel, MakesTitlesWhiteWithTheAttributesOfTheirFirstCharacter) {
    const auto panel = panelOfSize(100, 50);
    TextAttributes first;
    first.font = Font{"Serif", 20, true};
    first.foregroundColor = Color{1, 0, 0, 1};
    AttributedString title("Stop now");
    title.setAttributes(first, 0, 4);
    Button button({});
    button.setAttributedTitle(title);
    panel->makeButtonWhite(button);
    first.foregroundColor = calibratedWhite(1);
    EXPECT_EQ(button.attributedTitle(), AttributedString("Stop now", first));

    button.setTitle("");
    panel->makeButtonWhite(button);
    EXPECT_EQ(button.attributedTitle(), AttributedString());
}

TEST(Autoresizing, DistributesTheSizeChangeAmongFlexibleParts) {
    using namespace Autoresizing;
    const std::pair<std::uint32_t, Rect> cases[] = {
        {0, {{10, 20}, {30, 40}}},
        {kMinXMargin | kMinYMargin, {{70, 50}, {30, 40}}},
        {kMinXMargin | kMaxXMargin | kMaxYMargin, {{40, 20}, {30, 40}}},
        {kMinXMargin | kWidth | kMaxXMargin | kMinYMargin | kHeight, {{30, 35}, {50, 55}}},
    };
    for (const auto& [mask, frame] : cases)
        EXPECT_EQ(autoresized({{10, 20}, {30, 40}}, mask, {100, 100}, {160, 130}), frame) << mask;
}

} // namespace
