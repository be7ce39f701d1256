#include "menubar/HalvexMenuExtraBase.h"

#include "identifiers/ExportedIdentifiers.h"
#include "tests/support/Fakes.h"
#include "tests/support/RecordingLog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <stdexcept>

using namespace platform;
using testing::ElementsAre;

namespace {

class TestExtra : public HalvexMenuExtraBase {
  public:
    using HalvexMenuExtraBase::extraHeight_;
    using HalvexMenuExtraBase::extraWidth_;
    using HalvexMenuExtraBase::view_;

    std::function<void()> onSetView;
    int recalculations = 0;

    void setView(std::shared_ptr<MenuExtraView> view) override {
        if (onSetView)
            onSetView();
        HalvexMenuExtraBase::setView(std::move(view));
    }
    void recalWidth() override {
        ++recalculations;
        HalvexMenuExtraBase::recalWidth();
    }
};

class MenuExtraBase : public testing::Test {
  protected:
    std::shared_ptr<TestExtra> started() {
        auto extra = std::make_shared<TestExtra>();
        extra->initWithBundle(bundle);
        log.take();
        host.redisplays = host.lengthChanges = 0;
        extra->recalculations = 0;
        return extra;
    }

    test::RecordingLog log;
    test::RecordingHost host;
    test::RecordingGraphics graphics;
    test::FixedEvents events;
    const std::shared_ptr<Bundle> bundle = std::make_shared<Bundle>(
        "/Test.menu", PropertyList::Dictionary{{"CFBundleName", "Test Clock"},
                                               {"CFBundleShortVersionString", "3.1"}});
};

#if defined(__x86_64__)
constexpr const char* kStartingLine = "starting Test Clock Menu Extra for Intel 64Bit 3.1";
#elif defined(__aarch64__)
constexpr const char* kStartingLine = "starting Test Clock Menu Extra for ARM 64Bit 3.1";
#endif

TEST_F(MenuExtraBase, StartsWithItsViewAndADashAsTitle) {
    events.event.modifierFlags = kOptionKeyMask;
    myDebug = 7;
    const auto extra = std::make_shared<TestExtra>();
    EXPECT_EQ(extra->initWithBundle(bundle), extra);
    EXPECT_THAT(log.take(), ElementsAre(kStartingLine));
    EXPECT_EQ(myDebug, 0) << "the Option key is ignored";
    EXPECT_EQ(extra->view(), extra->view_);
    EXPECT_EQ(extra->view_->clickCount(), 2);
    EXPECT_EQ(extra->extraHeight_, 21.0F);
    EXPECT_EQ(extra->attributedTitle()->string(), "-");
    EXPECT_EQ(extra->extraWidth_, 9.0F);
    EXPECT_EQ(extra->view()->frame().size, (Size{9, 22}));
    EXPECT_TRUE(extra->validateMenuItem(MenuItem("")));
}

TEST_F(MenuExtraBase, FailsToInitializeWithoutABundle) {
    EXPECT_EQ(std::make_shared<TestExtra>()->initWithBundle(nullptr), nullptr);
    EXPECT_THAT(log.take(), ElementsAre("HalvexMenuExtraBase super initWithBundle failed"));
}

TEST_F(MenuExtraBase, LogsPlatformExceptionsFromSetViewAndPropagatesOthers) {
    const auto extra = std::make_shared<TestExtra>();
    extra->onSetView = [] { throw Exception("ViewError", "no room"); };
    EXPECT_EQ(extra->initWithBundle(bundle), extra);
    EXPECT_EQ(log.take().back(), "HalvexMenuExtraBase setView exception name: ViewError   "
                                 "reason: no room   userInfo: (null)");
    EXPECT_EQ(extra->attributedTitle(), nullptr) << "the title is set after the view";
    EXPECT_NE(extra->view(), nullptr) << "the platform's view is kept";

    const auto other = std::make_shared<TestExtra>();
    other->onSetView = [] { throw std::runtime_error("not a platform exception"); };
    EXPECT_THROW(other->initWithBundle(bundle), std::runtime_error);
}

TEST_F(MenuExtraBase, LogsItsDestructionWhenVerbose) {
    auto extra = started();
    myDebug = 1;
    extra.reset();
    myDebug = 0;
    EXPECT_THAT(log.take(), ElementsAre(testing::MatchesRegex(
                                "dealloc HalvexMenuExtraBase <HalvexMenuExtraBase: 0x.*> 0")));
}

TEST_F(MenuExtraBase, RedrawsTheTitleOnlyWhenItsTextChanges) {
    const auto extra = started();
    // The redisplays are one for the text and one for the width.
    using Case = std::tuple<std::optional<std::string>, int, float>;
    for (const auto& [title, redisplays, width] :
         {Case{"12:00", 2, 37}, Case{"12:00", 0, 37}, Case{"12:01", 1, 37}, Case{"", 2, 2},
          Case{std::nullopt, 1, 2}, Case{std::nullopt, 1, 2}, Case{"", 1, 2}}) {
        host.redisplays = 0;
        extra->setTitle(title);
        EXPECT_EQ(host.redisplays, redisplays) << title.value_or("no title");
        EXPECT_EQ(extra->length(), width);
        EXPECT_EQ(extra->attributedTitle() != nullptr, title.has_value());
    }
    EXPECT_EQ(extra->recalculations, 7);
}

TEST_F(MenuExtraBase, AddsAShadowToTheTitleIfTheViewDrawsShadows) {
    const auto extra = started();
    extra->view_->setDrawShadow(true);
    extra->setTitle("abc");
    const auto runs = extra->attributedTitle()->runs();
    EXPECT_EQ(runs.front().length, 3U);
    EXPECT_EQ(runs.front().attributes.shadow, (Shadow{.offset = {2, 2}, .blurRadius = 1.5}));
    EXPECT_EQ(extra->length(), 21 + 2 + 2.5F);
}

TEST_F(MenuExtraBase, CopiesAttributedTitlesAndRedrawsOnlyIfTheWidthChanges) {
    const auto extra = started();
    const auto title = std::make_shared<AttributedString>("x");
    extra->setAttributedTitle(title);
    EXPECT_NE(extra->attributedTitle(), title);
    EXPECT_EQ(*extra->attributedTitle(), *title);
    EXPECT_EQ(host.redisplays, 0) << "as wide as the dash";
    extra->setAttributedTitle(extra->attributedTitle());
    EXPECT_EQ(extra->recalculations, 1) << "the instance already held is ignored";
    extra->setAttributedTitle(nullptr);
    EXPECT_EQ(extra->length(), 2.0F);
}

TEST_F(MenuExtraBase, SumsWidthsInSinglePrecisionAndReportsOnlyChanges) {
    const auto extra = started();
    const auto icon = std::make_shared<test::BlankImage>(15.6, 16);
    extra->setImage(icon);
    extra->setImage(icon);
    EXPECT_EQ(extra->recalculations, 1);
    EXPECT_EQ(extra->length(), 7.0F + (15.6F + 2.0F) + 0.0F);
    extra->setImage(std::make_shared<test::BlankImage>(16777216.0, 16)); // 2^24
    EXPECT_EQ(extra->length(), 16777224.0F) << "16777225 in double precision";
    extra->SetViewWidth(16777224.0F);
    EXPECT_EQ(host.lengthChanges, 2);
    extra->SetViewWidth(std::numeric_limits<float>::quiet_NaN());
    EXPECT_EQ(extra->length(), 0.0F) << "NaN becomes 0";
}

TEST_F(MenuExtraBase, DetectsSecondsInAFormatByCapitalS) {
    const auto extra = started();
    for (const char* format : {"%H:%M:%S", "%%S"})
        EXPECT_TRUE(extra->CheckForSecFormat(format)) << format;
    for (const char* format : {"%H:%M", "%s", ""})
        EXPECT_FALSE(extra->CheckForSecFormat(format)) << format;
    EXPECT_FALSE(extra->CheckForSecFormat(std::nullopt));
}

} // namespace
