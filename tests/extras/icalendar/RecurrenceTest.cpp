#include "tests/extras/icalendar/CalendarFolderFixture.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class Recurrence : public test::CalendarFolderFixture {};

TEST_F(Recurrence, FollowsRules) {
    struct Case {
        std::string start, rule, days;
    };
    for (const auto& [start, rule, days] : std::vector<Case>{
             {"19970902", "FREQ=DAILY;INTERVAL=10;COUNT=5",
              "19970902 19970912 19970922 19971002 19971012"},
             {"19980128", "FREQ=DAILY;UNTIL=20000103;BYMONTH=1;BYDAY=SA,SU",
              "19980128 19980131 19990102 19990103 19990109 19990110 19990116 19990117 19990123 "
              "19990124 19990130 19990131 20000101 20000102"},
             {"19970901", "freq=weekly;INTERVAL=2;WKST=SU;BYDAY=MO,WE,FR;UNTIL=19970930",
              "19970901 19970903 19970905 19970915 19970917 19970919 19970929"},
             {"19970805", "FREQ=WEEKLY;INTERVAL=2;COUNT=4;BYDAY=TU,SU;WKST=MO",
              "19970805 19970810 19970819 19970824"},
             {"19970805", "FREQ=WEEKLY;INTERVAL=2;COUNT=4;BYDAY=TU,SU;WKST=SU",
              "19970805 19970817 19970819 19970831"},
             {"19700101", "FREQ=WEEKLY;INTERVAL=2;COUNT=3;BYDAY=MO,TH",
              "19700101 19700112 19700115"},
             {"19691230", "FREQ=WEEKLY;INTERVAL=2;COUNT=3;BYDAY=MO,TU",
              "19691230 19700112 19700113"},
             {"19970905", "FREQ=MONTHLY;COUNT=4;BYDAY=1FR", "19970905 19971003 19971107 19971205"},
             {"19970907", "FREQ=MONTHLY;INTERVAL=2;COUNT=6;BYDAY=1SU,-1SU",
              "19970907 19970928 19971102 19971130 19980104 19980125"},
             {"20260908", "FREQ=MONTHLY;BYDAY=2TU;COUNT=4", "20260908 20261013 20261110 20261208"},
             {"19970922", "FREQ=MONTHLY;COUNT=4;BYDAY=-2MO", "19970922 19971020 19971117 19971222"},
             {"19970928", "FREQ=MONTHLY;BYMONTHDAY=-3;COUNT=6",
              "19970928 19971029 19971128 19971229 19980129 19980226"},
             {"19970930", "FREQ=MONTHLY;COUNT=4;BYMONTHDAY=1,-1",
              "19970930 19971001 19971031 19971101"},
             {"19970910", "FREQ=MONTHLY;INTERVAL=18;COUNT=4;BYMONTHDAY=10,+11,12",
              "19970910 19970911 19970912 19990310"},
             {"19980213", "FREQ=MONTHLY;BYDAY=FR;BYMONTHDAY=13;COUNT=5",
              "19980213 19980313 19981113 19990813 20001013"},
             {"19961105",
              "FREQ=YEARLY;INTERVAL=4;BYMONTH=11;BYDAY=TU;BYMONTHDAY=2,3,4,5,6,7,8;COUNT=3",
              "19961105 20001107 20041102"},
             {"19970904", "FREQ=MONTHLY;COUNT=3;BYDAY=TU,WE,TH;BYSETPOS=3",
              "19970904 19971007 19971106"},
             {"19970929", "FREQ=MONTHLY;BYDAY=MO,TU,WE,TH,FR;BYSETPOS=-2;COUNT=5",
              "19970929 19971030 19971127 19971230 19980129"},
             {"20261124", "FREQ=MONTHLY;BYDAY=MO,-1FR;BYSETPOS=1,-1;UNTIL=20270110",
              "20261124 20261130 20261207 20261228 20270104"},
             {"20070115", "FREQ=MONTHLY;BYMONTHDAY=15,30;COUNT=5",
              "20070115 20070130 20070215 20070315 20070330"},
             {"20260131", "FREQ=MONTHLY;COUNT=4", "20260131 20260331 20260531 20260731"},
             {"19960229", "FREQ=YEARLY;UNTIL=20090101", "19960229 20000229 20040229 20080229"},
             {"18960229", "FREQ=YEARLY;COUNT=4", "18960229 19040229 19080229 19120229"},
             {"19970519", "FREQ=YEARLY;BYDAY=20MO;COUNT=3", "19970519 19980518 19990517"},
             {"20251203", "FREQ=YEARLY;BYDAY=1WE;COUNT=3", "20251203 20260107 20270106"},
             {"19971229", "FREQ=YEARLY;BYDAY=-1MO;COUNT=3", "19971229 19981228 19991227"},
             {"19970313", "FREQ=YEARLY;BYMONTH=3;BYDAY=-1SU;COUNT=3", "19970313 19970330 19980329"},
             {"19970610", "FREQ=YEARLY;COUNT=5;BYMONTH=6,7",
              "19970610 19970710 19980610 19980710 19990610"},
             {"20261123", "FREQ=YEARLY;BYMONTHDAY=1;COUNT=4",
              "20261123 20261201 20270101 20270201"},
             {"19971128", "FREQ=WEEKLY;COUNT=7",
              "19971128 19971205 19971212 19971219 19971226 19980102 19980109"},
             {"20261231", "FREQ=DAILY;COUNT=1", "20261231"},
             {"20261231", "FREQ=DAILY;UNTIL=20261230", "20261231"},
             {"20300101", "FREQ=YEARLY;INTERVAL=2147483647;COUNT=2", "20300101"},
         }) {
        writeEvent("DTSTART;VALUE=DATE:" + start + "\nRRULE:" + rule);
        EXPECT_EQ(found(), days) << rule;
    }
    EXPECT_THAT(log.take(), IsEmpty());
}

TEST_F(Recurrence, ShowsTheFirstEventOfARuleThatItDoesNotSupport) {
    const std::pair<std::string, std::string> cases[]{
        {"FREQ=HOURLY", "FREQ=HOURLY is not supported"},
        {"FREQ=YEARLY;BYWEEKNO=20", "BYWEEKNO is not supported"},
        {"FREQ=DAILY;BYHOUR=9,17", "BYHOUR is not supported"},
        {"FREQ=DAILY;INTERVAL=0", "INTERVAL=0 is not supported"},
        {"FREQ=DAILY;INTERVAL=99999999999", "INTERVAL=99999999999 is not supported"},
        {"FREQ=DAILY;COUNT=2x", "COUNT=2x is not supported"},
        {"FREQ=DAILY;UNTIL=tomorrow", "UNTIL=tomorrow is not supported"},
        {"FREQ=MONTHLY;BYDAY=0MO", "BYDAY=0MO is not supported"},
        {"FREQ=MONTHLY;BYDAY=54MO", "BYDAY=54MO is not supported"},
        {"FREQ=MONTHLY;BYDAY=M", "BYDAY=M is not supported"},
        {"FREQ=MONTHLY;BYMONTHDAY=32", "BYMONTHDAY=32 is not supported"},
        {"FREQ=YEARLY;BYMONTH=-1", "BYMONTH=-1 is not supported"},
        {"FREQ=DAILY;WKST=XX", "WKST=XX is not supported"},
        {"FREQ=WEEKLY;BYDAY=2MO", "numbers in BYDAY are not supported for days and weeks"},
        {"BYDAY=MO", "a rule has no FREQ"},
        {"FREQ=DAILY;BYSETPOS=" + std::string(2000, '1'), "a rule has more than 2000 bytes"},
        {"FREQ=DAILY\nEXRULE:FREQ=WEEKLY", "EXRULE is not supported"},
    };
    for (const auto& [rule, reason] : cases) {
        writeEvent("DTSTART;VALUE=DATE:20261123\nRRULE:" + rule);
        EXPECT_EQ(found(), "20261123") << rule;
        EXPECT_THAT(log.take(), ElementsAre(testing::AllOf(HasSubstr("cannot repeat all events"),
                                                           HasSubstr("Work.ics: line "),
                                                           HasSubstr(": " + reason))));
        EXPECT_EQ(found(), "20261123");
        EXPECT_THAT(log.take(), IsEmpty()) << "it is logged once";
        EXPECT_THAT(calendars.brokenFiles(), IsEmpty());
    }
}

TEST_F(Recurrence, KeepsTheTimeOfItsZoneAndShowsItInTheLocalOne) {
    // The clocks change on March 8 and 29 and on October 25 and November 1.
    const std::pair<std::string, std::string> cases[]{
        {"DTSTART;TZID=America/New_York:20260301T190000\nRRULE:FREQ=WEEKLY;COUNT=6",
         "20260302@01:00 20260309@00:00 20260316@00:00 20260323@00:00 20260330@01:00 "
         "20260406@01:00"},
        {"DTSTART;TZID=\"/example.org/20050126_1/America/New_York\":20261123T090000",
         "20261123@15:00"},
        {"DTSTART:20261123T233000Z", "20261124@00:30"},
        {"DTSTART:20261123T093000", "20261123@09:30"},
        {"DTSTART;TZID=W. Europe Standard Time:20261123T093000", "20261123@09:30"},
        {"DTSTART;TZID=Asia/Kolkata:20260629T020000", "20260628@22:30"},
        {"DTSTART;TZID=Europe/Berlin:20260328T023000\nRRULE:FREQ=DAILY;COUNT=3",
         "20260328@02:30 20260329@03:30 20260330@02:30"},
        {"DTSTART;TZID=Europe/Berlin:20261024T023000\nRRULE:FREQ=DAILY;COUNT=3",
         "20261024@02:30 20261025@02:30 20261026@02:30"},
        {"DTSTART;TZID=Europe/Berlin:20261123T090000\nRRULE:FREQ=DAILY;UNTIL=20261125T080000Z",
         "20261123@09:00 20261124@09:00 20261125@09:00"},
        {"DTSTART;TZID=Europe/Berlin:20261123T090000\nRRULE:FREQ=DAILY;UNTIL=20261125T075959Z",
         "20261123@09:00 20261124@09:00"},
        {"DTSTART:20261123T090000\nRRULE:FREQ=DAILY;UNTIL=20261124", // a date that is not UTC
         "20261123@09:00 20261124@09:00"},
    };
    for (const auto& [properties, times] : cases) {
        writeEvent(properties);
        EXPECT_EQ(found(), times) << properties;
    }
    writeEvent("DTSTART:20261123T233000Z");
    zones.setLocal("America/New_York");
    EXPECT_EQ(found(), "20261123@18:30");
}

TEST_F(Recurrence, IsChangedByDatesAndByOtherEvents) {
    const std::string daily = "UID:1\nSUMMARY:A\nDTSTART;TZID=Europe/Berlin:20261123T090000\n"
                              "RRULE:FREQ=DAILY;COUNT=4";
    const std::string dates = "UID:2\nDTSTART;VALUE=DATE:20261123\nRRULE:FREQ=DAILY;COUNT=3";
    const std::string first = "20261123@09:00=A ";
    const std::pair<std::string, std::string> cases[]{
        {event(daily + "\nEXDATE;TZID=Europe/Berlin:20261123T090000,20261125T090000"),
         "20261124@09:00=A 20261126@09:00=A"},
        {event(daily + "\nEXDATE:20261124T080000Z\nEXDATE:20261126T090000Z"),
         first + "20261125@09:00=A 20261126@09:00=A"},
        {event(daily + "\nEXDATE;VALUE=DATE:20261125"),
         first + "20261124@09:00=A 20261126@09:00=A"},
        {event(dates + "\nEXDATE:20261124T000000Z"), "20261123 20261125"},
        {event(dates + "\nRDATE;VALUE=DATE:20261201,20261124"),
         "20261123 20261124 20261125 20261201"},
        {event("DTSTART:20261123T090000\nRDATE;VALUE=PERIOD:20261124T100000/PT1H\n"
               "RDATE;VALUE=DATE:20261125"),
         "20261123@09:00 20261124@10:00 20261125@09:00"},
        {event(daily) + event("UID:1\nSUMMARY:B\nRECURRENCE-ID:20261124T080000Z\n"
                              "DTSTART;TZID=Europe/Berlin:20261201T100000"),
         first + "20261125@09:00=A 20261126@09:00=A 20261201@10:00=B"},
        {event("UID:1\nRECURRENCE-ID;TZID=Europe/Berlin:20261125T090000\nSTATUS:CANCELLED") +
             event(daily),
         first + "20261124@09:00=A 20261126@09:00=A"},
        {event(daily) + event("UID:other\nSUMMARY:B\nRECURRENCE-ID:20261124T080000Z\n"
                              "DTSTART:20261124T100000"),
         first + "20261124@09:00=A 20261124@10:00=B 20261125@09:00=A 20261126@09:00=A"},
        {event(daily + "\nSTATUS:CANCELLED"), ""},
    };
    for (const auto& [events, times] : cases) {
        write(calendar(events));
        EXPECT_EQ(found(), times) << events;
    }
    EXPECT_THAT(log.take(), IsEmpty());
}

TEST_F(Recurrence, ShowsEachDayOfALongEvent) {
    const std::pair<std::string, std::string> cases[]{
        {"DTSTART;VALUE=DATE:20261123\nDTEND;VALUE=DATE:20261125", "20261123 20261124"},
        {"DTSTART;VALUE=DATE:20261123\nDURATION:P1W", "20261123 20261124 20261125 20261126 "
                                                      "20261127 20261128 20261129"},
        {"DTSTART;VALUE=DATE:20261123\nDTEND;VALUE=DATE:20261122", "20261123"},
        {"DTSTART:20261123T220000\nDTEND:20261125T000000", "20261123@22:00 20261124"},
        {"DTSTART:20261123T220000\nDURATION:P1DT2H0M1S", "20261123@22:00 20261124 20261125"},
        {"DTSTART:20261123T220000\nDTEND:20261122T000000", "20261123@22:00"},
        {"DTSTART:20261123T220000\nDURATION:soon", "20261123@22:00"},
        {"DTSTART;TZID=Asia/Kolkata:20261123T010000\nDTEND;TZID=America/New_York:20261122T183000",
         "20261122@20:30 20261123"}, // a flight
        {"DTSTART;VALUE=DATE:20261123\nDTEND;VALUE=DATE:20261125\nRRULE:FREQ=WEEKLY;COUNT=2",
         "20261123 20261124 20261130 20261201"},
    };
    for (const auto& [properties, days] : cases) {
        writeEvent(properties);
        EXPECT_EQ(found(), days) << properties;
    }
    EXPECT_EQ(found("20261201", "20261201"), "20261201") << "it started on an earlier day";
}

} // namespace
