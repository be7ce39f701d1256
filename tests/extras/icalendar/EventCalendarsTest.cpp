#include "tests/extras/icalendar/CalendarFolderFixture.h"
#include "tests/support/PollingMainThread.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using namespace std::chrono_literals;
namespace fs = std::filesystem;

namespace {

class EventCalendars : public test::CalendarFolderFixture {
  protected:
    std::string titleOf(const std::string& line) {
        writeEvent("DTSTART:20261123T090000\r\n" + line);
        const auto events = calendars.between(test::day("20261123"), test::day("20261123"));
        return events.size() == 1 ? events.front().title : "not one event";
    }
};

TEST_F(EventCalendars, ReadsTitlesAsOneLineOfText) {
    const std::pair<std::string, std::string> cases[]{
        {"SUMMARY:Tea\\, cake\\; and\\nmore \\\\ C:\\temp", "Tea, cake; and more \\ C:\\temp"},
        {"summary;LANGUAGE=de;X-A=\"a:b;c\":Gru\xC3\r\n \xBC\xC3\x9F\r\n\te", "Gruüße"},
        {"SUMMARY: \t A\x1B[1m\x7F \xFF\xC3 ", "A [1m \uFFFD\uFFFD"},
        {"SUMMARY:" + std::string(201, 'x'), std::string(200, 'x') + "…"},
        {"SUMMARY:" + std::string(199, 'x') + "ü", std::string(199, 'x') + "…"},
        {"SUMMARY:Tea\\", "Tea\\"},
        {"BEGIN:VALARM\r\nSUMMARY:Alarm\r\nEND:VALARM\r\nSUMMARY:Tea", "Tea"},
        {"SUMMARY:Tea\r\nBEGIN:VALARM\r\nDTSTART:20200101\r\nSUMMARY:Alarm\r\nEND:VALARM", "Tea"},
        {"DESCRIPTION:one line\r\nof text without colon\r\nSUMMARY:Tea", "Tea"},
    };
    for (const auto& [line, title] : cases)
        EXPECT_EQ(titleOf(line), title) << line;
}

TEST_F(EventCalendars, TellsHolidaysFromOtherDays) {
    const std::pair<const char*, bool> cases[]{
        {"DTSTART;VALUE=DATE:20261123", false},
        {"DTSTART;VALUE=DATE:20261123\nTRANSP:TRANSPARENT", true},
        {"DTSTART;VALUE=DATE:20261123\nTRANSP:OPAQUE", false},
        {"DTSTART;VALUE=DATE:20261123\nTRANSP:TRANSPARENT\nCATEGORIES:Birthday", false},
        {"DTSTART:20261123T090000\nTRANSP:TRANSPARENT", false},
        {"DTSTART;VALUE=DATE:20261123\nCATEGORIES:Germany,Public HOLIDAYS", true},
    };
    for (const auto& [properties, isHoliday] : cases) {
        writeEvent(properties);
        const auto events = calendars.between(test::day("20261123"), test::day("20261123"));
        ASSERT_EQ(events.size(), 1U);
        EXPECT_EQ(events.front().isHoliday, isHoliday) << properties;
    }
}

TEST_F(EventCalendars, AreSortedAndNamedByTheirFilesUnlessTheyHaveAName) {
    folder.write("about to be written.ics", "");
    folder.write("b.ICS", "\xEF\xBB\xBF" +
                              calendar("X-WR-CALNAME:My\\, own\n" +
                                       event("DTSTART:20261123T090000\nSUMMARY:B") +
                                       event("DTSTART:20261123\nSUMMARY:C") +
                                       event("DTSTART:20261123\nTRANSP:TRANSPARENT\nSUMMARY:H")));
    folder.write("a.b.ics", "BEGIN:VCALENDAR\nBEGIN:VTODO\nDTSTART:20261123\nEND:VTODO\n" +
                                event("DTSTART:20261123T083000\nSUMMARY:A") + "END:VCALENDAR\n" +
                                calendar(event("DTSTART:20261122\nSUMMARY:D")));
    for (const char* ignored : {"c.txt", ".hidden.ics", ".ics"})
        folder.write(ignored, calendar(event("DTSTART:20261123\nSUMMARY:X")));
    std::vector<std::string> events;
    for (const auto& one : calendars.between(test::day("20261122"), test::day("20261123")))
        events.push_back(one.title + " in " + one.calendar);
    EXPECT_THAT(events, ElementsAre("D in a.b", "H in My, own", "C in My, own", "A in a.b",
                                    "B in My, own"));
    EXPECT_THAT(log.take(), IsEmpty());
}

TEST_F(EventCalendars, ReportABrokenFileOnceAndReadTheOthers) {
    const std::string good = event("DTSTART:20261123");
    folder.write("good.ics", calendar(event("DTSTART:20261231")));
    const auto many = [&](int count, const std::string& text) {
        std::string result;
        for (int i = 0; i < count; ++i)
            result += text;
        return result;
    };
    struct Case {
        std::string contents, reason, days;
    };
    for (const auto& [contents, reason, days] : std::vector<Case>{
             {"\xFF\xFE" + std::string("B\0E\0", 4), "line 1: not iCalendar data", ""},
             {"BEGIN:VCARD\nEND:VCARD\n", "line 1: not iCalendar data", ""},
             {calendar(good) + "END:VCALENDAR\n", "not iCalendar data", "20261123"},
             {"BEGIN:VCALENDAR\n" + good + "BEGIN:VEVENT\nDTSTART:20261124\n",
              "line 6: the file ends within VEVENT", "20261123"},
             {calendar(good + "BEGIN:VEVENT\nEND:VTODO\n" + good),
              "line 6: END:VTODO within VEVENT", "20261123"},
             {calendar(event("SUMMARY:A") + good), "line 4: an event has no usable DTSTART",
              "20261123"},
             {calendar(event("DTSTART:20260229") + good), "line 3: DTSTART is malformed",
              "20261123"},
             {calendar(event("DTSTART:20261123T240000") + good), "DTSTART is malformed",
              "20261123"},
             {calendar(event("DTSTART:20261123\nEXDATE:20261123,x")), "EXDATE is malformed", ""},
             {calendar(good + many(16, "BEGIN:X\n")), "too many nested components", "20261123"},
             {calendar(many(20'000, "BEGIN:VEVENT\nEND:VEVENT\n") + good),
              "line 3: an event has no usable DTSTART", "20261123"},
             {calendar(many(20'001, event("DTSTART:20261201"))), "more than 20000 events", ""},
             {calendar(event("DTSTART:20261123\nRDATE:" + many(20'001, "20261123,"))),
              "too many dates", "20261123"},
             {std::string((8 << 20) + 1, 'x'), "cannot read calendar", ""},
         }) {
        write(contents);
        EXPECT_EQ(found("20261101", "20261130"), days) << reason;
        EXPECT_THAT(log.take(),
                    ElementsAre(testing::AllOf(HasSubstr("Work.ics"), HasSubstr(reason))));
        EXPECT_THAT(calendars.brokenFiles(), ElementsAre("Work.ics"));
        EXPECT_EQ(found("20261231", "20261231"), "20261231") << "the other file";
        EXPECT_THAT(log.take(), IsEmpty()) << "it is logged once";
    }
    write(calendar(good));
    EXPECT_EQ(found("20261101", "20261130"), "20261123");
    EXPECT_THAT(calendars.brokenFiles(), IsEmpty());
}

TEST_F(EventCalendars, LimitHowMuchIsShownAndCounted) {
    std::string events;
    for (int i = 0; i < 300; ++i)
        events += event("DTSTART:19000101\nRRULE:FREQ=DAILY;BYMONTH=2;BYMONTHDAY=30;COUNT=3") +
                  event("DTSTART:20261101\nDURATION:P100D\nRRULE:FREQ=DAILY;COUNT=99999");
    write(calendar(events));
    EXPECT_EQ(calendars.between(test::day("20261101"), test::day("20270101")).size(), 20'000U);
    EXPECT_EQ(calendars.between(test::day("20261101"), test::day("20270101")).size(), 20'000U);
    EXPECT_THAT(log.take(), ElementsAre(HasSubstr("more than 20000")));
    EXPECT_EQ(calendars.between(test::day("19000101"), test::day("19000101")).size(), 300U);
    EXPECT_THAT(calendars.between(std::chrono::sys_days::max(), std::chrono::sys_days::min()),
                IsEmpty());
    EXPECT_GT(calendars.between(std::chrono::sys_days::min(), test::day("19100101")).size(), 0U);
    for (int i = 0; i < 65; ++i)
        folder.write("A" + std::to_string(100 + i) + ".ics", calendar(event("DTSTART:18000101")));
    EXPECT_EQ(calendars.between(test::day("18000101"), test::day("18000101")).size(), 64U);
    EXPECT_THAT(log.take(), ElementsAre(HasSubstr("more than 64 files")));
}

TEST_F(EventCalendars, FollowChangesOfTheFiles) {
    const std::string calendarsPath = folder.file("later/Calendars");
    extras::EventCalendars later(calendarsPath);
    test::PollingMainThread loop;
    int calls = 0;
    const auto days = [&] {
        return later.between(test::day("20261101"), test::day("20261130")).size();
    };
    const auto watch = later.onChange([&] { ++calls; });
    EXPECT_EQ(days(), 0U);
    const auto reported = [&] {
        return loop.runUntil([&] { return std::exchange(calls, 0) > 0; }, 2s);
    };
    folder.write("later/Calendars/a.ics", calendar(event("DTSTART:20261123")));
    EXPECT_TRUE(reported());
    EXPECT_EQ(days(), 1U);
    folder.write("new", calendar(event("DTSTART:20261124") + event("DTSTART:20261125")));
    fs::rename(folder.file("new"), calendarsPath + "/a.ics");
    EXPECT_TRUE(reported());
    EXPECT_EQ(days(), 2U);
    fs::remove(calendarsPath + "/a.ics");
    EXPECT_TRUE(reported());
    EXPECT_EQ(days(), 0U);
    zones.setLocal("Asia/Kolkata");
    EXPECT_EQ(calls, 1);
    fs::remove_all(calendarsPath);
    folder.write("later/Calendars", "a file");
    EXPECT_EQ(days(), 0U);
    EXPECT_EQ(days(), 0U);
    EXPECT_THAT(log.take(), ElementsAre(HasSubstr("cannot read the folder of calendars")));
}

} // namespace
