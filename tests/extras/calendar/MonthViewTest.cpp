#include "extras/HalvexDateCalMenu/MonthView.h"
#include "testing/ManualAppearance.h"
#include "testing/RecordingGraphics.h"
#include "testing/RecordingHost.h"
#include "tests/support/ScopedEnvironment.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <sstream>

using namespace platform;
using namespace std::chrono;
using extras::CalendarEvent;
using extras::MonthView;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

constexpr sys_days kTuesday = year(2026) / 11 / 24;

/// What closes the menu.
struct Container final : ViewContainer {
    void viewNeedsDisplay(MenuExtraView&) override {}
    void viewSizeChanged(MenuExtraView&) override { ++resizes; }
    void dismiss() override { ++dismissals; }
    int resizes = 0;
    int dismissals = 0;
};

/// A month view in a menu, which tests use where it has drawn its parts.
class Month : public testing::Test {
  protected:
    Month() {
        view->setContainer(&container);
        configure({});
    }
    ~Month() override { view->setContainer(nullptr); }

    void configure(MonthView::Settings settings, sys_days today = kTuesday) {
        settings.rules.numbering.firstWeekday = Monday;
        view->configure(settings);
        view->reset(today);
    }
    /// Draws the view. Returns the first rectangle in which it has drawn @p text after @p heading.
    Rect find(const std::string& text, const std::string& heading = "") {
        graphics.drawn.clear();
        view->drawRect({{}, view->frame().size});
        auto line = std::ranges::find_if(graphics.drawn, [&](const std::string& drawn) {
            return drawn.starts_with("text " + heading);
        });
        line = std::find_if(line, graphics.drawn.end(), [&](const std::string& drawn) {
            return drawn.starts_with("text " + text + " in ");
        });
        Rect rect;
        if (line == graphics.drawn.end()) {
            ADD_FAILURE() << text << " is not drawn";
            return rect;
        }
        std::istringstream numbers(line->substr(("text " + text + " in ").size()));
        numbers >> rect.origin.x >> rect.origin.y >> rect.size.width >> rect.size.height;
        return rect;
    }
    Point at(const std::string& text, const std::string& heading = "") {
        const Rect rect = find(text, heading);
        return {rect.origin.x + rect.size.width / 2, rect.origin.y + rect.size.height / 2};
    }
    void click(Point point, std::uint32_t flags = 0, int count = 1) {
        const Event event{.modifierFlags = flags, .clickCount = count, .location = point};
        view->mouseDown(event);
        view->mouseUp(event);
    }
    void press(Key key, int times = 1, std::uint32_t flags = 0) {
        for (int i = 0; i < times; ++i)
            EXPECT_TRUE(view->keyDown({.key = key, .modifierFlags = flags}));
    }
    std::string heading() const { return view->accessibleDescription().name; }
    std::string title() const { return view->accessibleDescription().value; }
    std::string description() const { return view->accessibleDescription().description; }
    std::size_t drawnDots() {
        graphics.drawn.clear();
        view->drawRect({{}, view->frame().size});
        std::size_t shapes = 0;
        for (const std::string& line : graphics.drawn)
            shapes += line.starts_with("path with ") ? 1 : 0;
        return shapes - 2; // today's disc and button
    }

    const test::ScopedEnvironment language{"LC_ALL", "C"};
    halvextest::ManualAppearance appearance;
    halvextest::RecordingGraphics graphics;
    halvextest::RecordingHost host;
    Container container;
    std::vector<CalendarEvent> events;
    std::vector<sys_days> opened;
    std::string reason;
    int copies = 0;
    int selectionChanges = 0;
    std::shared_ptr<MonthView> view = std::make_shared<MonthView>(
        MonthView::Actions{.events =
                               [this](sys_days first, sys_days last) {
                                   std::vector<CalendarEvent> result;
                                   for (const CalendarEvent& event : events)
                                       if (first <= event.day && event.day <= last)
                                           result.push_back(event);
                                   return result;
                               },
                           .selectionChanged = [this] { ++selectionChanges; },
                           .copy = [this] { ++copies; },
                           .open =
                               [this](sys_days day) {
                                   opened.push_back(day);
                                   return reason;
                               }});
};

struct KeyCase {
    Key key;
    int times;
    const char* heading;
    const char* title;
};

TEST_F(Month, MovesTheSelectedDayWithTheKeyboardAndShowsItsMonth) {
    const KeyCase cases[] = {
        {Key::Left, 1, "November 2026", "Monday, November 23, 2026"},
        {Key::Right, 7, "December 2026", "Tuesday, December 1, 2026"},
        {Key::Up, 4, "October 2026", "Tuesday, October 27, 2026"},
        {Key::Down, 1, "December 2026", "Tuesday, December 1, 2026"},
        {Key::PageUp, 1, "October 2026", "Saturday, October 24, 2026"},
        {Key::PageDown, 2, "January 2027", "Sunday, January 24, 2027"},
    };
    for (const KeyCase& one : cases) {
        view->didDisplay();
        press(one.key, one.times);
        EXPECT_TRUE(view->needsDisplay());
        EXPECT_GT(find(one.heading).size.width, 0);
        EXPECT_EQ(heading(), one.heading);
        EXPECT_EQ(title(), one.title);
        press(Key::Home);
        EXPECT_EQ(title(), "Tuesday, November 24, 2026");
        EXPECT_EQ(description(), "Today");
    }
    EXPECT_EQ(selectionChanges, 1 + 7 + 4 + 1 + 1 + 2 + 6);
    for (const Key key : {Key::Escape, Key::Tab, Key::End})
        EXPECT_FALSE(view->keyDown({.key = key})) << "left to the menu";
}

TEST_F(Month, MirrorsColumnsAndHorizontalArrowKeysForRightToLeft) {
    const double monday = at("Mon").x;
    EXPECT_LT(monday, at("Sun").x);
    EXPECT_LT(at("23").x, at("24").x);
    configure({.rightToLeft = true});
    EXPECT_GT(at("Mon").x, at("Sun").x);
    EXPECT_GT(at("23").x, at("24").x);
    press(Key::Left);
    EXPECT_EQ(title(), "Wednesday, November 25, 2026");
    press(Key::Right, 2);
    EXPECT_EQ(title(), "Monday, November 23, 2026");
    click(at("27", "1 in"));
    EXPECT_EQ(title(), "Friday, November 27, 2026");
}

TEST_F(Month, ChangesTheMonthButNotTheSelectionWithTheWheelAndTheButtons) {
    const Rect first = find("November 2026");
    const Point next{view->frame().size.width - 28, first.origin.y + first.size.height / 2};
    for (const auto& [delta, expected] : {std::pair(1.0, "October 2026"),
                                          {-2.0, "December 2026"},
                                          {-0.5, "December 2026"},
                                          {-0.5, "January 2027"}}) {
        EXPECT_TRUE(view->scrollWheel({.deltaY = delta}));
        EXPECT_EQ(heading(), expected);
    }
    click(next);
    EXPECT_EQ(heading(), "February 2027");
    click({next.x - 56, next.y});
    click({next.x - 56, next.y});
    EXPECT_EQ(heading(), "December 2026");
    EXPECT_EQ(title(), "Tuesday, November 24, 2026");
    press(Key::Left);
    EXPECT_EQ(heading(), "November 2026") << "the month of the selected day";
    click({next.x - 28, next.y});
    EXPECT_EQ(title(), "Tuesday, November 24, 2026") << "today";
}

TEST_F(Month, SelectsDaysAndRangesWithTheMouse) {
    click(at("2"));
    EXPECT_EQ(title(), "Monday, November 2, 2026");
    click(at("13"), kShiftKeyMask);
    EXPECT_EQ(title(), "Nov 2 – Nov 13, 2026");
    EXPECT_EQ(description(), "12 days · 10 working days\n1 week 5 days");
    click(at("26")); // of October, in the first row
    EXPECT_EQ(title(), "Monday, October 26, 2026");
    EXPECT_EQ(heading(), "November 2026") << "nothing moves under the pointer";

    view->mouseDown({.location = at("20")});
    view->mouseDragged({.location = at("18")});
    view->mouseDragged({.location = {-5, -5}});
    view->mouseUp({.location = at("18")});
    EXPECT_EQ(title(), "Nov 18 – Nov 20, 2026");
    view->mouseDragged({.location = at("3")}); // from the bar
    EXPECT_EQ(title(), "Nov 18 – Nov 20, 2026");
    view->mouseUp({.location = at("4")});
    EXPECT_EQ(title(), "Wednesday, November 4, 2026");
    view->mouseDown({.buttonNumber = 1, .location = at("5")});
    EXPECT_EQ(title(), "Wednesday, November 4, 2026");
}

TEST_F(Month, ForgetsThePointerWhenTheMenuOpensAgain) {
    events = {{"Harvest", "Holidays", kTuesday, std::nullopt, true}};
    view->reset(kTuesday);
    view->mouseDown({.location = at("24")});
    view->mouseMoved({.location = at("24")});
    view->reset(kTuesday);
    EXPECT_EQ(view->toolTip(), "");
    view->mouseDragged({.location = at("20")});
    EXPECT_EQ(title(), "Tuesday, November 24, 2026");
}

TEST_F(Month, SelectsRangesWithShiftAndTheKeyboard) {
    press(Key::Down, 2, kShiftKeyMask);
    EXPECT_EQ(title(), "Nov 24 – Dec 8, 2026");
    EXPECT_EQ(heading(), "December 2026");
    press(Key::Left, 20, kShiftKeyMask);
    EXPECT_EQ(title(), "Nov 18 – Nov 24, 2026");
    press(Key::Right);
    EXPECT_EQ(title(), "Thursday, November 19, 2026");
}

TEST_F(Month, CopiesAndClosesWithReturnAndStaysOpenWithControlC) {
    EXPECT_TRUE(view->keyDown({.text = "c", .modifierFlags = kControlKeyMask}));
    EXPECT_FALSE(view->keyDown({.text = "c"}));
    EXPECT_EQ(std::pair(copies, container.dismissals), std::pair(1, 0));
    press(Key::Return);
    EXPECT_EQ(std::pair(copies, container.dismissals), std::pair(2, 1));
}

TEST_F(Month, OpensADayWithADoubleClickOrSaysWhyNot) {
    reason = "No calendar program is installed";
    click(at("12"), 0, 2);
    EXPECT_EQ(container.dismissals, 0);
    EXPECT_EQ(description(), reason);
    reason.clear();
    click(at("13"), 0, 2);
    EXPECT_EQ(container.dismissals, 1);
    EXPECT_THAT(opened, ElementsAre(sys_days(year(2026) / 11 / 12), year(2026) / 11 / 13));
}

TEST_F(Month, ShowsEventsUnderTheirDaysInTheTooltipAndBelow) {
    const sys_days friday = kTuesday + days(3);
    EXPECT_EQ(drawnDots(), 0U);
    const double height = view->frame().size.height;
    events = {{"Harvest", "Holidays", friday, std::nullopt, true}};
    for (int i = 0; i < 5; ++i)
        events.push_back({"Meeting", "Work", friday, 9 * 60 + 5 * i, false});
    view->reloadEvents();
    EXPECT_EQ(drawnDots(), 3U) << "not more";
    EXPECT_EQ(view->frame().size.height, height) << "today has no events";

    view->mouseMoved({.location = at("27", "1 in")});
    EXPECT_THAT(view->toolTip(), HasSubstr("Harvest\n09:00 Meeting\n09:05 Meeting"));
    view->didDisplay();
    view->mouseExited();
    EXPECT_TRUE(view->needsDisplay());
    EXPECT_EQ(view->toolTip(), "");
    click(at("27", "1 in"));
    EXPECT_THAT(description(), HasSubstr("Harvest\n09:00 Meeting"));
    EXPECT_GT(view->frame().size.height, height);
    const double larger = view->frame().size.height;
    for (const char* text : {"Harvest", "Meeting", "09:05", "3 more events"})
        EXPECT_GT(find(text, "Friday").size.width, 0);
    press(Key::Left);
    EXPECT_EQ(view->frame().size.height, larger) << "the view does not shrink";

    click(at("23"));
    click(at("29", "1 in"), kShiftKeyMask);
    EXPECT_THAT(description(), HasSubstr("4 working days")) << "not on the holiday";
}

TEST_F(Month, NumbersWeeksOnlyIfItHasARule) {
    EXPECT_EQ(description(), "Today");
    const double width = view->frame().size.width;
    configure({.weekNumbers = extras::kIsoWeeks});
    EXPECT_EQ(description(), "Today · Week 48");
    EXPECT_GT(view->frame().size.width, width);
    EXPECT_LT(at("48").x, at("23").x);
    EXPECT_EQ(at("48").y, at("24").y);
}

TEST_F(Month, ShowsTwoMonthsSideBySide) {
    const double width = view->frame().size.width;
    configure({.months = 2});
    EXPECT_GT(view->frame().size.width, 2 * width - 56);
    EXPECT_LT(at("November 2026").x, at("December 2026").x);
    click(at("25", "December"));
    EXPECT_EQ(title(), "Friday, December 25, 2026");
    press(Key::Right, 7);
    EXPECT_EQ(heading(), "December 2026") << "with January";
    press(Key::PageUp, 2);
    EXPECT_EQ(heading(), "October 2026");
}

TEST_F(Month, MarksTodayAndTheSelectionInTheAccentColourAndFollowsTheAppearance) {
    const auto drawsWith = [&](const std::string& color) {
        view->updateStyle();
        graphics.drawn.clear();
        view->drawRect({{}, view->frame().size});
        return std::ranges::count_if(graphics.drawn, [&](const std::string& line) {
            return line.find(" with " + color) != std::string::npos;
        });
    };
    appearance.setAccentColor(Color{0.5, 0.25, 0.75});
    EXPECT_EQ(drawsWith("0.5 0.25 0.75 1 "), 2) << "today's disc and the ring around it";
    press(Key::Left);
    EXPECT_EQ(drawsWith("0.5 0.25 0.75 1 "), 2) << "today's disc and the selected day's ring";
    EXPECT_EQ(drawsWith("0.5 0.25 0.75 0.15"), 1);
    EXPECT_EQ(drawsWith("0 0 0 0.1 "), 1) << "the separator";
    appearance.setDark(true);
    EXPECT_EQ(drawsWith("1 1 1 0.1 "), 1);
    appearance.setHighContrast(true);
    EXPECT_EQ(drawsWith("1 1 1 0.6 "), 1);
    EXPECT_EQ(drawsWith("0.5 0.25 0.75 1 "), 1) << "the ring is in the text's colour";
}

TEST_F(Month, MovesTodaysMarkAtMidnightWithoutChangingTheSelection) {
    view->didDisplay();
    view->setToday(kTuesday + days(1));
    EXPECT_TRUE(view->needsDisplay());
    EXPECT_EQ(title(), "Tuesday, November 24, 2026");
    EXPECT_EQ(description(), "Yesterday");
}

} // namespace
