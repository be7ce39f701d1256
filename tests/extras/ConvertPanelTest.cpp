#include "extras/HalvexTimeMenu/ConvertPanel.h"
#include "extras/HalvexTimeMenu/ConvertRange.h"
#include "extras/HalvexTimeMenu/ConvertTime.h"
#include "platform/expat/ExpatPropertyLists.h"
#include "testing/ManualClock.h"
#include "testing/ManualPreferences.h"
#include "testing/ManualTimeZones.h"
#include "testing/RecordingGraphics.h"
#include "testing/RecordingHost.h"
#include "testing/RecordingPanels.h"
#include "testing/RecordingPasteboard.h"
#include "tests/support/PollingMainThread.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <array>
#include <cmath>

using namespace platform;
using testing::ElementsAre;

namespace {

constexpr std::int64_t kHour = 3600;

std::int64_t utc(int year, int month, int day, int hour = 0, int minute = 0) {
    return secondsSince1970({year, month, day, hour, minute}).value();
}

ZoneRules rules(const char* text) {
    return ZoneRules::parse(text).value();
}

constexpr const char* kBerlin = "CET-1CEST,M3.5.0,M10.5.0/3";
constexpr const char* kKathmandu = "<+0545>-5:45";
/// The clocks skip midnight in March, and repeat 23:00 in October.
constexpr const char* kMidnight = "<+03>-3<+04>,M3.5.0/0,M10.5.0/0";

TEST(ConvertTime, ReadsWhatPeopleType) {
    struct Row {
        const char* text;
        int hour, minute;
    };
    for (const auto& [text, hour, minute] :
         std::vector<Row>{{"14:30", 14, 30},      {"14.30", 14, 30},       {"14h30", 14, 30},
                          {"1430", 14, 30},       {"930", 9, 30},          {" 9 ", 9, 0},
                          {"09", 9, 0},           {"9 h", 9, 0},           {"0:00", 0, 0},
                          {"23:59:59", 23, 59},   {"2:30 pm", 14, 30},     {"2:30\u202FPM", 14, 30},
                          {"02:30 P.M.", 14, 30}, {"230p", 14, 30},        {"2 a", 2, 0},
                          {"12 am", 0, 0},        {"12:15 pm", 12, 15},    {"2:30 odp.", 14, 30},
                          {"2:30 Dop.", 2, 30},   {"14\u00A0: 30", 14, 30}}) {
        const auto time = readTimeOfDay(text, "dop.", "odp.");
        ASSERT_TRUE(time) << text;
        EXPECT_EQ(*time, (TimeOfDay{hour, minute})) << text;
    }
    for (const char* text :
         {"",        " ",   "pm",    ":",      "24:00",    "25",         "9:60",   "9:5",
          "9:",      ":30", "12345", "1:02:3", "1:02:60",  "1:02:03:04", "0 am",   "13 pm",
          "2:30 xm", "-1",  "+9",    "2,30",   "half two", "123:00",     "9 30 x", "٩"})
        EXPECT_FALSE(readTimeOfDay(text)) << text;
    EXPECT_FALSE(readTimeOfDay("9 odp."));
}

TEST(ConvertRange, IsTodayAndTomorrowAlsoWhenTheClocksChange) {
    struct Row {
        const char* zone;
        std::int64_t now, start;
        int hours;
    };
    for (const auto& [zone, now, start, hours] :
         std::vector<Row>{{kBerlin, utc(2026, 11, 24, 22, 59), utc(2026, 11, 23, 23), 48},
                          {kBerlin, utc(2026, 11, 24, 23), utc(2026, 11, 24, 23), 48},
                          {kBerlin, utc(2026, 3, 28, 12), utc(2026, 3, 27, 23), 47},
                          {kBerlin, utc(2026, 3, 29, 12), utc(2026, 3, 28, 23), 47},
                          {kBerlin, utc(2026, 10, 24, 12), utc(2026, 10, 23, 22), 49},
                          {kKathmandu, utc(2028, 2, 28, 18, 15), utc(2028, 2, 28, 18, 15), 48},
                          {kMidnight, utc(2026, 3, 28, 12), utc(2026, 3, 27, 21), 47},
                          {kMidnight, utc(2026, 3, 29, 12), utc(2026, 3, 28, 21), 47}}) {
        const ConvertRange range(rules(zone), now);
        EXPECT_EQ(range.start(), start) << zone << now;
        EXPECT_EQ(range.end() - range.start(), hours * kHour) << zone << now;
        EXPECT_EQ(range.steps(), 4 * hours);
        EXPECT_EQ(range.instantAt(range.steps()), range.end());
        EXPECT_EQ(range.instantAt(-1), range.start());
        EXPECT_EQ(range.stepAt(range.start() + 7 * 60 + 29), 0);
        EXPECT_EQ(range.stepAt(range.start() + 7 * 60 + 30), 1);
        EXPECT_EQ(range.stepAt(range.end() + kHour), range.steps());
    }
}

TEST(ConvertRange, StepsToFullQuartersOfAnHour) {
    const ConvertRange range(ZoneRules(), 0);
    const std::array<std::int64_t, 3> rows[] = {{-5, 0, 1},  {0, 0, 1},   {899, 0, 1},
                                                {900, 0, 2}, {901, 1, 2}, {48 * kHour, 191, 192}};
    for (const auto& [instant, before, after] : rows) {
        EXPECT_EQ(range.stepBeside(instant, -1), before) << instant;
        EXPECT_EQ(range.stepBeside(instant, 1), after) << instant;
    }
}

TEST(ConvertRange, FindsATypedTime) {
    const auto spring = utc(2026, 3, 28, 12), autumn = utc(2026, 10, 24, 12);
    struct Row {
        const char* zone;
        std::int64_t now, current;
        TimeOfDay time;
        std::optional<std::int64_t> instant;
    };
    for (const auto& [zone, now, current, time, instant] : std::vector<Row>{
             {kBerlin, spring, spring, {0, 0}, utc(2026, 3, 27, 23)},
             {kBerlin, spring, utc(2026, 3, 29, 22), {0, 0}, utc(2026, 3, 29, 22)},
             {kBerlin, spring, spring, {1, 30}, utc(2026, 3, 28, 0, 30)},
             {kBerlin, spring, spring + 24 * kHour, {1, 30}, utc(2026, 3, 29, 0, 30)},
             {kBerlin, spring, spring + 24 * kHour, {2, 0}, std::nullopt},
             {kBerlin, spring, spring + 24 * kHour, {2, 59}, std::nullopt},
             {kBerlin, spring, spring + 24 * kHour, {3, 0}, utc(2026, 3, 29, 1)},
             {kBerlin, autumn, autumn + 24 * kHour, {2, 30}, utc(2026, 10, 25, 0, 30)},
             {kBerlin, autumn, autumn + 24 * kHour, {3, 0}, utc(2026, 10, 25, 2)},
             // In Kathmandu, the range is from 04:45 to 04:45 two days later.
             {kKathmandu, autumn, autumn, {14, 30}, utc(2026, 10, 24, 8, 45)},
             {kKathmandu, autumn, autumn, {3, 30}, utc(2026, 10, 24, 21, 45)},
             {kKathmandu, autumn, utc(2026, 10, 25, 20), {6, 0}, utc(2026, 10, 25, 0, 15)}}) {
        const ConvertRange range(rules(kBerlin), now);
        EXPECT_EQ(range.instantOf(time, rules(zone), current), instant)
            << zone << ' ' << time.hour << ' ' << current;
    }
}

TEST(ConvertRange, MarksTheHoursThatTheClocksShow) {
    const auto hours = [](std::int64_t now) {
        std::vector<int> result;
        const ConvertRange range(rules(kBerlin), now);
        for (const auto& mark : range.marks(1))
            if (mark.step <= 16 && std::lround(mark.place * range.steps()) == mark.step)
                result.push_back(mark.hour);
        return result;
    };
    EXPECT_THAT(hours(utc(2026, 3, 29, 12)), ElementsAre(0, 1, 3, 4, 5));
    EXPECT_THAT(hours(utc(2026, 10, 25, 12)), ElementsAre(0, 1, 2, 2, 3));
    EXPECT_THAT(ConvertRange(ZoneRules(), 0).middles(), ElementsAre(12 * kHour, 36 * kHour));
}

class ConvertPanelTest : public testing::Test {
  protected:
    ConvertPanelTest() {
        expat::install();
        zones.add("Europe/Berlin", kBerlin);
        zones.add("Asia/Kathmandu", kKathmandu);
        zones.add("Antarctica/McMurdo", "NZST-12NZDT,M9.5.0,M4.1.0/3");
        zones.setLocal("Europe/Berlin");
        clock.seconds = utc(2026, 3, 28, 12, 7) + 31;
        writeLocations({"Asia/Kathmandu", "Antarctica/McMurdo", "Sea/Atlantis"});
    }
    /// Locations with the names of zones, at 0° N, 0° E.
    void writeLocations(const std::vector<std::string>& places) {
        std::string records;
        for (const std::string& zone : places)
            records += "<array><string>" + zone.substr(zone.find('/') + 1) +
                       "</string><string>X</string><string>" + zone +
                       "</string><real>0</real><real>0</real></array>";
        const auto next = folder.write("next", "<plist><array>" + records + "</array></plist>");
        std::filesystem::create_directories(folder.file(kProduct));
        std::filesystem::rename(next, folder.file(std::string(kProduct) + "/Halvex Locations"));
    }
    void open() {
        panel.emplace(Preferences(preferences.domain("test"), "MenuClock"));
        panel->show();
        ASSERT_TRUE(panel->isOpen());
    }
    template <class T>
    std::shared_ptr<T> control(std::size_t index = 0) {
        for (const auto& any : panel->window()->contentView().controls())
            if (auto found = std::dynamic_pointer_cast<T>(any); found && index-- == 0)
                return found;
        return nullptr;
    }
    void type(const std::string& text) {
        control<TextField>()->userDidEdit(text);
        control<TextField>()->userDidCommit();
    }
    std::string time() { return control<TextField>()->text(); }
    std::string day() { return control<Label>()->text(); }
    std::vector<std::string> details() {
        std::vector<std::string> result;
        for (const ListRow& row : control<ListBox>()->rows())
            result.push_back(row.detail);
        return result;
    }
    bool showsError() { return !control<ViewBox>()->isHidden(); }

    static constexpr const char* kProduct =
        "Library/Application Support/Quorvane Software/Halvex Pro";

    test::TemporaryFolder folder;
    test::ScopedEnvironment home{"HOME", folder.path().string()};
    test::ScopedEnvironment language{"LC_ALL", "C"};
    test::RecordingLog log;
    test::PollingMainThread loop;
    halvextest::ManualClock clock;
    halvextest::ManualTimeZones zones;
    halvextest::ManualPreferences preferences;
    halvextest::RecordingHost host;
    halvextest::RecordingGraphics graphics;
    halvextest::RecordingPanels panels;
    halvextest::RecordingPasteboard pasteboard;
    std::optional<ConvertPanel> panel;
};

TEST_F(ConvertPanelTest, ShowsTheTimeNowAtAllLocations) {
    open();
    EXPECT_EQ(time(), "13:07");
    EXPECT_EQ(day(), "Sat Mar 28, local time");
    EXPECT_EQ(control<ListBox>()->rows()[0].text, "Local time (Berlin)");
    EXPECT_EQ(control<ListBox>()->rows()[1].text, "Kathmandu");
    EXPECT_THAT(details(), ElementsAre("13:07", "17:52", "+1   01:07", "no usable time zone"));
    // The sun is up at noon UTC, and down at midnight.
    const auto& rows = control<ListBox>()->rows();
    const auto day = rows[1].image, unknown = rows[0].image;
    EXPECT_EQ(rows[3].image, unknown);
    EXPECT_NE(day, unknown);
    control<Slider>()->userDidMove(0);
    EXPECT_NE(rows[1].image, day);
    EXPECT_NE(rows[1].image, unknown);
    control<Button>()->performClick();
    EXPECT_EQ(rows[2].image, day);
    EXPECT_EQ(control<Slider>()->value(), 52);
    EXPECT_EQ(control<Slider>()->maxValue(), 4 * 47);
    EXPECT_FALSE(showsError());
}

TEST_F(ConvertPanelTest, KeepsSliderFieldAndListInStep) {
    open();
    const auto slider = control<Slider>();
    slider->userDidMove(slider->positionOf(4 * 26)); // one hour of these is skipped
    EXPECT_EQ(time(), "03:00");
    EXPECT_EQ(day(), "Sun Mar 29, local time");
    EXPECT_THAT(details(), ElementsAre("03:00", "06:45", "14:00", "no usable time zone"));
    type("5 pm");
    EXPECT_EQ(time(), "17:00");
    EXPECT_EQ(slider->value(), 4 * 40);
    EXPECT_THAT(details(), ElementsAre("17:00", "20:45", "+1   04:00", "no usable time zone"));
    for (const auto& [direction, expected] : {std::pair(1, "17:15"), {1, "17:30"}, {-1, "17:15"}}) {
        control<TextField>()->userDidStep(direction);
        EXPECT_EQ(time(), expected);
    }
    control<TextField>()->userDidEdit("9:10");
    control<TextField>()->userDidStep(1);
    EXPECT_EQ(time(), "09:15") << "from the time that was typed";

    clock.seconds += 24 * kHour;
    control<Button>()->performClick();
    EXPECT_EQ(time(), "14:07");
    EXPECT_EQ(day(), "Sun Mar 29, local time");
    EXPECT_EQ(slider->value(), 4 * 13) << "a later range";
}

TEST_F(ConvertPanelTest, MarksWhatIsNotATimeAndChangesNothing) {
    open();
    const auto before = details();
    type("25:00");
    EXPECT_TRUE(showsError());
    EXPECT_EQ(time(), "25:00");
    EXPECT_EQ(day(), "Not a time: try 14:30 or 2:30 pm");
    control<TextField>()->userDidStep(1);
    EXPECT_EQ(details(), before);
    EXPECT_EQ(control<Slider>()->value(), 52);
    control<TextField>()->userDidEdit("2");
    EXPECT_FALSE(showsError());
    control<Slider>()->userDidMove(4 * 30);
    type("2:30");
    EXPECT_TRUE(showsError());
    EXPECT_EQ(day(), "The clocks skip this time that day");
    type("3:30");
    EXPECT_FALSE(showsError());
    EXPECT_EQ(day(), "Sun Mar 29, local time");
}

TEST_F(ConvertPanelTest, SetsTheTimeAtTheSelectedLocation) {
    open();
    const auto list = control<ListBox>();
    list->userDidSelect(2);
    EXPECT_EQ(time(), "01:07");
    EXPECT_EQ(day(), "Sun Mar 29 in McMurdo");
    type("9");
    EXPECT_THAT(details(), ElementsAre("21:00", "+1   01:45", "+1   09:00", "no usable time zone"));
    list->userDidSelect(3);
    EXPECT_EQ(day(), "Sat Mar 28, local time") << "there is no zone";
    list->userDidSelect(std::nullopt);
    EXPECT_EQ(list->selectedRow(), 0U);
}

TEST_F(ConvertPanelTest, CopiesTheTimes) {
    open();
    type("14:30");
    const auto copy = control<Button>(1);
    copy->performClick();
    EXPECT_EQ(pasteboard.text, "Berlin 14:30, Kathmandu 19:15, McMurdo 02:30 +1");
    EXPECT_EQ(control<Label>(1)->text(), "Copied");
    type("15");
    EXPECT_EQ(control<Label>(1)->text(), "");

    control<ListBox>()->userDidSelect(3);
    writeLocations({"Antarctica/McMurdo", "Europe/Berlin"});
    EXPECT_TRUE(loop.runUntil([&] { return details().size() == 3; }, std::chrono::seconds(5)));
    EXPECT_EQ(control<ListBox>()->selectedRow(), 2U);
    copy->performClick();
    EXPECT_EQ(pasteboard.text, "McMurdo 03:00 +1, Berlin 15:00") << "the local zone once";
}

TEST_F(ConvertPanelTest, FollowsTheLocalZone) {
    open();
    control<ListBox>()->userDidSelect(1);
    zones.setLocal("Asia/Kathmandu");
    EXPECT_THAT(details(), ElementsAre("17:52", "17:52", "+1   01:07", "no usable time zone"));
    EXPECT_EQ(control<ListBox>()->rows()[0].text, "Local time (Kathmandu)");
    EXPECT_EQ(control<ListBox>()->selectedRow(), 1U);
    EXPECT_EQ(control<Slider>()->maxValue(), 4 * 48);
}

TEST_F(ConvertPanelTest, RemembersItsFrame) {
    const auto settings = preferences["test"];
    const Rect usual{{180, 110}, {432, 357}};
    struct Row {
        const char* stored;
        Rect frame;
    };
    for (const auto& [stored, frame] : std::vector<Row>{{"", usual},
                                                        {"1 2 500 400", {{1, 2}, {500, 400}}},
                                                        {"-300 2.5 76 40", {{-300, 2.5}, {76, 40}}},
                                                        {"1 2 75 400", usual},
                                                        {"1 2 500 39", usual},
                                                        {"1 2 500", usual},
                                                        {"1 2 500 400 5", usual},
                                                        {"1e9 2 500 400", usual},
                                                        {"nan 2 500 400", usual}}) {
        settings.set("MenuClockConvertFrame", PropertyList(stored));
        open();
        EXPECT_EQ(panel->window()->frame(), frame) << stored;
    }
    panel->window()->setFrame({{7, 8}, {440, 360}}, false, false);
    panel->window()->didClose();
    EXPECT_FALSE(panel->isOpen());
    EXPECT_EQ(settings.string("MenuClockConvertFrame"), "7 8 440 360");
}

TEST_F(ConvertPanelTest, IsOneWindowThatStartsAgainWhenItIsOpened) {
    open();
    const auto window = panel->window();
    type("5");
    panel->show();
    EXPECT_EQ(time(), "05:00") << "it was open";
    window->didClose();
    zones.setLocal("Asia/Kathmandu");
    EXPECT_EQ(time(), "05:00") << "a closed panel costs nothing";
    panel->show();
    EXPECT_EQ(time(), "17:52");
    EXPECT_EQ(panel->window(), window);
    panel.reset();
    window->didClose();

    panels.makesWindows = false;
    panel.emplace(Preferences());
    panel->show();
    EXPECT_FALSE(panel->isOpen());
}

TEST_F(ConvertPanelTest, SaysWhyThereAreNoLocations) {
    writeLocations({});
    open();
    EXPECT_EQ(control<Label>(1)->text(), "No locations are chosen");
    EXPECT_THAT(details(), ElementsAre("13:07"));
    folder.write(std::string(kProduct) + "/Halvex Locations", "<broken");
    panel->window()->didClose();
    panel.reset();
    open();
    EXPECT_EQ(control<Label>(1)->text(), "The locations cannot be read");
}

TEST_F(ConvertPanelTest, DrawsAScaleOfBothDays) {
    open();
    const auto scale = control<ViewBox>(1)->view();
    graphics.drawn.clear();
    scale->drawRect({{}, scale->frame().size});
    std::vector<std::string> texts;
    for (const std::string& line : graphics.drawn)
        if (line.starts_with("text "))
            texts.push_back(line.substr(5, line.find(" at ") - 5));
    EXPECT_THAT(texts, ElementsAre("0", "6", "12", "18", "0", "6", "12", "18", "0", "Sat Mar 28",
                                   "Sun Mar 29"));
    EXPECT_EQ(scale->accessibleDescription().name, "Sat Mar 28, Sun Mar 29");
}

} // namespace
